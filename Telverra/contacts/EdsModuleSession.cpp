// The Evolution Data Server session of the module telverra-eds, over libebook's GLib API. Everything here runs on the
// thread that calls run(), in a main context of its own made thread-default there: libebook delivers its callbacks
// and signals to the thread-default context of whoever started the call.

#include "EdsSession.h"

#include <libebook/libebook.h>

#include <QThread>
#include <QThreadPool>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

const char sourcesService[] = "org.gnome.evolution.dataserver.Sources5";

QString fromUtf8(const char *text)
{
    return QString::fromUtf8(text);
}

bool isCancelled(const GError *error)
{
    return error && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
}

// The session's events, delivered one after the other in the order they happened, from a thread of their own.
class Outbox
{
public:
    Outbox()
        : m_thread([this] { deliver(); })
    {}
    ~Outbox() { close(true); }

    void post(std::function<void()> event)
    {
        {
            std::lock_guard lock(m_mutex);
            m_events.push_back(std::move(event));
        }
        m_posted.notify_one();
    }
    /// Ends the delivery, once what was posted is delivered, or dropping it.
    void close(bool drop)
    {
        {
            std::lock_guard lock(m_mutex);
            m_closed = true;
            m_drop = m_drop || drop;
        }
        m_posted.notify_one();
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

private:
    void deliver()
    {
        std::unique_lock lock(m_mutex);
        while (true) {
            m_posted.wait(lock, [this] { return !m_events.empty() || m_closed; });
            if (m_events.empty() || m_drop) {
                return;
            }
            std::function<void()> event = std::move(m_events.front());
            m_events.pop_front();
            lock.unlock();
            event();
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::function<void()>> m_events;
    bool m_closed = false;
    bool m_drop = false;
    std::thread m_thread;
};

class EdsModuleSession final : public EdsSession
{
public:
    EdsModuleSession(Events *events, int startTimeout)
        : m_events(events)
        , m_startTimeout(startTimeout)
        , m_context(g_main_context_new())
        , m_loop(g_main_loop_new(m_context, FALSE))
        , m_cancellable(g_cancellable_new())
    {
        m_converters.setMaxThreadCount(QThread::idealThreadCount());
    }

    ~EdsModuleSession() override
    {
        g_object_unref(m_cancellable);
        g_main_loop_unref(m_loop);
        g_main_context_unref(m_context);
    }

    void run() override
    {
        g_main_context_push_thread_default(m_context);
        if (!sessionBusExists()) {
            giveUp(QStringLiteral("no session bus"));
        } else if (!m_stopping.load()) {
            ++m_pending;
            g_bus_get(G_BUS_TYPE_SESSION, m_cancellable, &EdsModuleSession::busReady, this);
            g_main_loop_run(m_loop);
        }
        shutDown();
        g_main_context_pop_thread_default(m_context);
    }

    void stop() override
    {
        m_stopping.store(true);
        // A source rather than g_main_context_invoke(), which would run the quit at once on this thread while the
        // loop does not run yet, and the loop would then never end.
        GSource *quit = g_idle_source_new();
        g_source_set_callback(
            quit,
            [](gpointer loop) -> gboolean {
                g_main_loop_quit(static_cast<GMainLoop *>(loop));
                return G_SOURCE_REMOVE;
            },
            m_loop, nullptr);
        g_source_attach(quit, m_context);
        g_source_unref(quit);
    }

private:
    // The session's bus, never one made up for the occasion: without one GLib would start a bus of its own for an X
    // display (dbus-launch), and EDS's services on it, to outlive the program.
    static bool sessionBusExists()
    {
        if (g_getenv("DBUS_SESSION_BUS_ADDRESS")) {
            return true;
        }
        gchar *socket = g_build_filename(g_get_user_runtime_dir(), "bus", nullptr);
        const bool exists = g_file_test(socket, G_FILE_TEST_EXISTS);
        g_free(socket);
        return exists;
    }

    // Nothing follows once EDS is known to be out of reach.
    void giveUp(const QString &reason)
    {
        m_outbox.post([this, reason] { m_events->unavailable(reason); });
        g_main_loop_quit(m_loop);
    }

    struct Book
    {
        ESource *source = nullptr;
        EBookClient *client = nullptr;
        EBookClientView *view = nullptr;
        guint reconnect = 0; // the source of a pending reconnection
        unsigned serial = 0; // which opening a callback belongs to (numbered across books)
    };
    // What an asynchronous step of a book's opening carries: the book may be closed, or opened again, meanwhile.
    struct Step
    {
        EdsModuleSession *session;
        std::string book;
        unsigned serial;
    };

    Book *bookOf(const Step &step)
    {
        const auto found = m_books.find(step.book);
        return found != m_books.end() && found->second.serial == step.serial ? &found->second : nullptr;
    }
    template<typename Object>
    std::string bookWith(Object *object, Object *Book::*member)
    {
        for (auto &[uid, book] : m_books) {
            if (book.*member == object) {
                return uid;
            }
        }
        return {};
    }

    static void busReady(GObject *, GAsyncResult *result, gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        --self->m_pending;
        GError *error = nullptr;
        self->m_bus = g_bus_get_finish(result, &error);
        if (!self->m_bus) {
            if (!isCancelled(error)) {
                self->giveUp(u"no session bus: " + fromUtf8(error->message));
            }
            g_error_free(error);
            return;
        }
        // The bus going away is no reason for the whole program to end, which GLib's shared connection would do.
        g_dbus_connection_set_exit_on_close(self->m_bus, FALSE);
        // Asked first, with a deadline: with no services installed the registry would otherwise come up empty as if
        // there were no books, and a registry that hangs would hold its creation for 25 seconds.
        ++self->m_pending;
        g_dbus_connection_call(self->m_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                               "StartServiceByName", g_variant_new("(su)", sourcesService, 0u), G_VARIANT_TYPE("(u)"),
                               G_DBUS_CALL_FLAGS_NONE, self->m_startTimeout, self->m_cancellable,
                               &EdsModuleSession::servicesStarted, self);
    }

    static void servicesStarted(GObject *bus, GAsyncResult *result, gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        --self->m_pending;
        GError *error = nullptr;
        GVariant *reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error);
        if (!reply) {
            if (!isCancelled(error)) {
                self->giveUp(fromUtf8(error->message));
            }
            g_error_free(error);
            return;
        }
        g_variant_unref(reply);
        ++self->m_pending;
        e_source_registry_new(self->m_cancellable, &EdsModuleSession::registryReady, self);
    }

    static void registryReady(GObject *, GAsyncResult *result, gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        --self->m_pending;
        GError *error = nullptr;
        self->m_registry = e_source_registry_new_finish(result, &error);
        if (!self->m_registry) {
            if (!isCancelled(error)) {
                self->giveUp(fromUtf8(error->message));
            }
            g_error_free(error);
            return;
        }
        for (const char *signal :
             {"source-added", "source-removed", "source-enabled", "source-disabled", "source-changed"}) {
            g_signal_connect_swapped(self->m_registry, signal, G_CALLBACK(&EdsModuleSession::sourcesChanged), self);
        }
        self->refreshBooks();
    }

    // Several sources change at once (an account and its books): the books are listed again once they have.
    static void sourcesChanged(gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        if (self->m_refresh) {
            return;
        }
        GSource *idle = g_idle_source_new();
        g_source_set_callback(
            idle,
            [](gpointer session) -> gboolean {
                auto *that = static_cast<EdsModuleSession *>(session);
                that->m_refresh = 0;
                that->refreshBooks();
                return G_SOURCE_REMOVE;
            },
            self, nullptr);
        self->m_refresh = g_source_attach(idle, self->m_context);
        g_source_unref(idle);
    }

    void refreshBooks()
    {
        GList *enabled = e_source_registry_list_enabled(m_registry, E_SOURCE_EXTENSION_ADDRESS_BOOK);
        QList<Events::Book> listed;
        std::map<std::string, ESource *> wanted;
        for (GList *item = enabled; item; item = item->next) {
            auto *source = static_cast<ESource *>(item->data);
            gchar *name =
                e_source_registry_dup_unique_display_name(m_registry, source, E_SOURCE_EXTENSION_ADDRESS_BOOK);
            listed.append({fromUtf8(e_source_get_uid(source)), fromUtf8(name)});
            g_free(name);
            wanted.emplace(e_source_get_uid(source), source);
        }
        for (auto book = m_books.begin(); book != m_books.end();) {
            if (wanted.count(book->first) == 0) {
                closeBook(book->second);
                book = m_books.erase(book);
            } else {
                ++book;
            }
        }
        if (listed != m_listed) {
            m_listed = listed;
            m_outbox.post([this, listed] { m_events->booksListed(listed); });
        }
        for (const auto &[uid, source] : wanted) {
            if (m_books.count(uid) == 0) {
                Book &book = m_books[uid];
                book.source = E_SOURCE(g_object_ref(source));
                openBook(uid, book);
            }
        }
        g_list_free_full(enabled, g_object_unref);
    }

    void openBook(const std::string &uid, Book &book)
    {
        ++m_pending;
        // Waiting for the book to be online, however long it takes: 0 would not wait at all for a local book, and a
        // bounded wait always costs its whole length.
        e_book_client_connect(book.source, static_cast<guint32>(-1), m_cancellable, &EdsModuleSession::bookConnected,
                              new Step{this, uid, book.serial = ++m_serials});
    }

    void closeBook(Book &book)
    {
        if (book.reconnect) {
            g_source_remove(book.reconnect);
            book.reconnect = 0;
        }
        if (book.view) {
            g_signal_handlers_disconnect_by_data(book.view, this);
            GError *ignored = nullptr;
            e_book_client_view_stop(book.view, &ignored);
            g_clear_error(&ignored);
            g_clear_object(&book.view);
        }
        if (book.client) {
            g_signal_handlers_disconnect_by_data(book.client, this);
            g_clear_object(&book.client);
        }
        g_clear_object(&book.source);
        book.serial = ++m_serials; // what is still under way for it is dropped when it ends
    }

    static void bookConnected(GObject *, GAsyncResult *result, gpointer data)
    {
        auto *step = static_cast<Step *>(data);
        EdsModuleSession *self = step->session;
        --self->m_pending;
        GError *error = nullptr;
        EClient *client = e_book_client_connect_finish(result, &error);
        Book *book = self->bookOf(*step);
        if (!book || !client) {
            if (book && !isCancelled(error)) {
                self->failed(fromUtf8(step->book.c_str()), error);
            }
            g_clear_error(&error);
            g_clear_object(&client);
            delete step;
            return;
        }
        book->client = E_BOOK_CLIENT(client);
        g_signal_connect(client, "backend-died", G_CALLBACK(&EdsModuleSession::backendDied), self);
        EBookQuery *everything = e_book_query_any_field_contains("");
        gchar *query = e_book_query_to_string(everything);
        e_book_query_unref(everything);
        ++self->m_pending;
        e_book_client_get_view(book->client, query, self->m_cancellable, &EdsModuleSession::viewReady, step);
        g_free(query);
    }

    static void viewReady(GObject *client, GAsyncResult *result, gpointer data)
    {
        auto *step = static_cast<Step *>(data);
        EdsModuleSession *self = step->session;
        --self->m_pending;
        GError *error = nullptr;
        EBookClientView *view = nullptr;
        const bool made = e_book_client_get_view_finish(E_BOOK_CLIENT(client), result, &view, &error);
        Book *book = self->bookOf(*step);
        const QString uid = fromUtf8(step->book.c_str());
        delete step;
        if (!book || !made) {
            if (book && !isCancelled(error)) {
                self->failed(uid, error);
            }
            g_clear_error(&error);
            g_clear_object(&view);
            return;
        }
        book->view = view;
        g_signal_connect(view, "objects-added", G_CALLBACK(&EdsModuleSession::contactsChanged), self);
        g_signal_connect(view, "objects-modified", G_CALLBACK(&EdsModuleSession::contactsChanged), self);
        g_signal_connect(view, "objects-removed", G_CALLBACK(&EdsModuleSession::contactsRemoved), self);
        g_signal_connect(view, "complete", G_CALLBACK(&EdsModuleSession::viewComplete), self);
        self->m_outbox.post([self, uid] { self->m_events->viewStarted(uid); });
        e_book_client_view_start(view, &error);
        if (error) {
            self->failed(uid, error);
            g_error_free(error);
        }
    }

    // The book's service ended (it crashed, or was stopped): the book is opened again a moment later, and read anew.
    static void backendDied(EBookClient *client, gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        const std::string uid = self->bookWith(client, &Book::client);
        const auto found = self->m_books.find(uid);
        if (found == self->m_books.end() || found->second.reconnect) {
            return;
        }
        Book &book = found->second;
        if (book.view) {
            g_signal_handlers_disconnect_by_data(book.view, self);
            g_clear_object(&book.view);
        }
        g_signal_handlers_disconnect_by_data(book.client, self);
        g_clear_object(&book.client);
        book.serial = ++self->m_serials;
        GSource *later = g_timeout_source_new(reconnectDelay);
        g_source_set_callback(
            later,
            [](gpointer pending) -> gboolean {
                auto *step = static_cast<Step *>(pending);
                if (Book *again = step->session->bookOf(*step)) {
                    again->reconnect = 0;
                    step->session->openBook(step->book, *again);
                }
                return G_SOURCE_REMOVE;
            },
            new Step{self, uid, book.serial}, [](gpointer pending) { delete static_cast<Step *>(pending); });
        book.reconnect = g_source_attach(later, self->m_context);
        g_source_unref(later);
    }

    // Turning a contact into text costs EDS as much as reading it, and a book's contacts all arrive within a tenth of a
    // second: the batches are turned into text on every core while the events keep their order.
    static void contactsChanged(EBookClientView *view, const GSList *contacts, gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        const std::string book = self->bookWith(view, &Book::view);
        if (book.empty() || !contacts) {
            return;
        }
        std::vector<EContact *> held;
        for (const GSList *item = contacts; item; item = item->next) {
            held.push_back(E_CONTACT(g_object_ref(item->data)));
        }
        auto conversion = std::make_shared<std::packaged_task<QList<Events::Card>()>>([held] { return cards(held); });
        std::shared_future<QList<Events::Card>> converted = conversion->get_future().share();
        self->m_converters.start([conversion] { (*conversion)(); });
        self->m_outbox.post([self, uid = fromUtf8(book.c_str()), converted] {
            const QList<Events::Card> &changed = converted.get();
            if (!changed.isEmpty()) {
                self->m_events->contactsChanged(uid, changed);
            }
        });
    }

    // The contacts as vCard text, with where their pictures lie; the references are given back.
    static QList<Events::Card> cards(const std::vector<EContact *> &contacts)
    {
        QList<Events::Card> converted;
        for (EContact *contact : contacts) {
            const char *uid = static_cast<const char *>(e_contact_get_const(contact, E_CONTACT_UID));
            if (uid) {
                gchar *vcard = e_vcard_to_string(E_VCARD(contact), EVC_FORMAT_VCARD_30);
                Events::Card card{fromUtf8(uid), QByteArray(vcard), {}};
                g_free(vcard);
                // EDS keeps pictures as files beside the book and names them in the card; only such a card is looked
                // at for it.
                if (card.vcard.contains("PHOTO") || card.vcard.contains("photo")) {
                    if (auto *photo = static_cast<EContactPhoto *>(e_contact_get(contact, E_CONTACT_PHOTO))) {
                        if (photo->type == E_CONTACT_PHOTO_TYPE_URI && photo->data.uri) {
                            card.photoUri = QByteArray(photo->data.uri);
                        }
                        e_contact_photo_free(photo);
                    }
                }
                converted.append(std::move(card));
            }
            g_object_unref(contact);
        }
        return converted;
    }

    void failed(const QString &book, const GError *error)
    {
        m_outbox.post([this, book, reason = fromUtf8(error->message)] { m_events->bookFailed(book, reason); });
    }

    static void contactsRemoved(EBookClientView *view, const GSList *uids, gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        QStringList removed;
        for (const GSList *item = uids; item; item = item->next) {
            removed.append(fromUtf8(static_cast<const char *>(item->data)));
        }
        const std::string book = self->bookWith(view, &Book::view);
        if (!book.empty()) {
            self->m_outbox.post(
                [self, uid = fromUtf8(book.c_str()), removed] { self->m_events->contactsRemoved(uid, removed); });
        }
    }

    static void viewComplete(EBookClientView *view, const GError *error, gpointer data)
    {
        auto *self = static_cast<EdsModuleSession *>(data);
        const std::string book = self->bookWith(view, &Book::view);
        if (book.empty()) {
            return;
        }
        if (error) {
            self->failed(fromUtf8(book.c_str()), error);
        } else {
            self->m_outbox.post([self, uid = fromUtf8(book.c_str())] { self->m_events->viewComplete(uid); });
        }
    }

    void shutDown()
    {
        g_cancellable_cancel(m_cancellable);
        if (m_refresh) {
            g_source_remove(m_refresh);
            m_refresh = 0;
        }
        for (auto &[uid, book] : m_books) {
            closeBook(book);
        }
        m_books.clear();
        if (m_registry) {
            g_signal_handlers_disconnect_by_data(m_registry, this);
            g_clear_object(&m_registry);
        }
        // The calls under way end as cancelled; they are let end here, so that none of them outlives the session. A
        // library that never ends one is not waited for beyond a bound.
        bool expired = false;
        GSource *bound = g_timeout_source_new(drainBound);
        g_source_set_callback(
            bound,
            [](gpointer flag) -> gboolean {
                *static_cast<bool *>(flag) = true;
                return G_SOURCE_REMOVE;
            },
            &expired, nullptr);
        g_source_attach(bound, m_context);
        while (m_pending > 0 && !expired) {
            g_main_context_iteration(m_context, TRUE);
        }
        g_source_destroy(bound);
        g_source_unref(bound);
        g_clear_object(&m_bus);
        // What is under way is still told, unless the store asked the session to stop (a missing EDS must be told).
        m_outbox.close(m_stopping.load());
        m_converters.waitForDone();
    }

    static constexpr guint reconnectDelay = 1000; // milliseconds
    static constexpr guint drainBound = 2000;

    Events *m_events;
    const int m_startTimeout;
    GMainContext *m_context;
    GMainLoop *m_loop;
    GCancellable *m_cancellable;
    std::atomic<bool> m_stopping = false;
    int m_pending = 0; // asynchronous calls under way
    GDBusConnection *m_bus = nullptr;
    ESourceRegistry *m_registry = nullptr;
    guint m_refresh = 0;
    unsigned m_serials = 0;
    std::map<std::string, Book> m_books;
    QList<Events::Book> m_listed;
    QThreadPool m_converters; // made from this thread, whose priority its threads take
    Outbox m_outbox;
};

} // namespace

extern "C" Q_DECL_EXPORT EdsSession *telverra_eds_session(EdsSession::Events *events, int startTimeout)
{
    return new EdsModuleSession(events, startTimeout);
}
