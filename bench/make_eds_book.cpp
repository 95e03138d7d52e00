// make_eds_book COUNT: adds COUNT generated contacts (the cards make_vdir writes, see VdirGenerator.h) to Evolution
// Data Server's personal address book on the session bus, through libebook, as GNOME Contacts adds them.
#include "VdirGenerator.h"

#include <libebook/libebook.h>

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: make_eds_book COUNT\n");
        return 2;
    }
    QTemporaryDir cards;
    if (!generateVdir(cards.path(), QByteArray(argv[1]).toInt(), 1)) {
        return 1;
    }
    GError *error = nullptr;
    ESourceRegistry *registry = e_source_registry_new_sync(nullptr, &error);
    ESource *personal = registry ? e_source_registry_ref_builtin_address_book(registry) : nullptr;
    EClient *client = personal ? e_book_client_connect_sync(personal, guint32(-1), nullptr, &error) : nullptr;
    if (!client) {
        std::fprintf(stderr, "make_eds_book: %s\n", error ? error->message : "no address book");
        return 1;
    }
    GSList *batch = nullptr;
    int added = 0;
    auto flush = [&] {
        const bool ok = !batch || e_book_client_add_contacts_sync(E_BOOK_CLIENT(client), batch,
                                                                  E_BOOK_OPERATION_FLAG_NONE, nullptr, nullptr, &error);
        added += int(g_slist_length(batch));
        g_slist_free_full(batch, g_object_unref);
        batch = nullptr;
        return ok;
    };
    QDirIterator files(cards.path(), {u"*.vcf"_qs}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly)) {
            return 1;
        }
        batch = g_slist_prepend(batch, e_contact_new_from_vcard(file.readAll().constData()));
        if (g_slist_length(batch) == 500 && !flush()) {
            std::fprintf(stderr, "make_eds_book: %s\n", error->message);
            return 1;
        }
    }
    if (!flush()) {
        std::fprintf(stderr, "make_eds_book: %s\n", error->message);
        return 1;
    }
    std::printf("%d contacts added to %s\n", added, e_source_get_display_name(personal));
    g_object_unref(client);
    g_object_unref(personal);
    g_object_unref(registry);
    return 0;
}
