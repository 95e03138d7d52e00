#include "ContactStoreManager.h"

#include "CombinedContactStore.h"
#include "EdsContactStore.h"
#include "VCardDirectoryStore.h"
#include "common/Trace.h"
#include "settings/Preferences.h"

#include <mutex>

namespace {
ContactStore *&sharedStore()
{
    static ContactStore *store = nullptr;
    return store;
}
} // namespace

const QStringList ContactStoreManager::defaultKeys = {
    QStringLiteral("fullNameDescriptor"), QStringLiteral("givenName"),       QStringLiteral("middleName"),
    QStringLiteral("familyName"),         QStringLiteral("birthday"),        QStringLiteral("imageDataAvailable"),
    QStringLiteral("thumbnailImageData"), QStringLiteral("postalAddresses"), QStringLiteral("organizationName"),
    QStringLiteral("jobTitle"),           QStringLiteral("birthday"),        QStringLiteral("emailAddresses"),
    QStringLiteral("phoneNumbers"),       QStringLiteral("socialProfiles")};

const QStringList ContactStoreManager::identifierKeys = {
    QStringLiteral("fullNameDescriptor"), QStringLiteral("givenName"),          QStringLiteral("middleName"),
    QStringLiteral("familyName"),         QStringLiteral("birthday"),           QStringLiteral("emailAddresses"),
    QStringLiteral("phoneNumbers"),       QStringLiteral("imageDataAvailable"), QStringLiteral("thumbnailImageData"),
    QStringLiteral("postalAddresses"),    QStringLiteral("organizationName"),   QStringLiteral("jobTitle"),
    QStringLiteral("birthday"),           QStringLiteral("socialProfiles")};

ContactStoreManager::ContactStoreManager(ContactStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{}

ContactStoreManager &ContactStoreManager::shared()
{
    static std::once_flag once;
    static ContactStoreManager *instance = nullptr;
    std::call_once(once, [] {
        ContactStore *store = sharedStore() ? sharedStore() : desktopStore();
        instance = new ContactStoreManager(*store); // both live as long as the process
    });
    return *instance;
}

ContactStore *ContactStoreManager::desktopStore()
{
    // Every store made here lives as long as the process.
    auto *folders = new VCardDirectoryStore;
#ifdef TELVERRA_EDS_MODULE
    if (Preferences(Preferences::defaultFilePath()).useEvolutionDataServer()) {
        return new CombinedContactStore({folders, new EdsContactStore});
    }
#endif
    return folders;
}

void ContactStoreManager::setSharedContactStore(ContactStore *store)
{
    sharedStore() = store;
}

void ContactStoreManager::requestAccess(const std::function<void(const AccessResult &)> &completion)
{
    m_store.requestAccess([completion](bool granted, const QString &error) {
        if (!error.isEmpty()) {
            completion(ContactStoreManagerError::permissionError());
        }
        completion(granted);
    });
}

void ContactStoreManager::fetchAllContacts(const std::optional<QStringList> &keys,
                                           const std::function<void(const FetchResult &)> &completion)
{
    const QStringList wanted = keys.value_or(defaultKeys); // every key is always read from a vCard
    Q_UNUSED(wanted);
    ContactStore::ContainersResult containers = m_store.containers();
    if (!containers.error.isEmpty()) {
        Trace::line(QStringLiteral("- Error fetching containers"));
        completion(ContactStoreManagerError::containerError(containers.error));
        containers.containers.clear();
    }
    QList<SharedVCardContact> results;
    for (const ContactStore::Container &container : std::as_const(containers.containers)) {
        ContactStore::ContactsResult contacts = m_store.unifiedContacts(container.identifier);
        if (!contacts.error.isEmpty()) {
            Trace::line(QStringLiteral("- Error fetching contacts from containers"));
            completion(ContactStoreManagerError::fetchError(contacts.error));
            continue;
        }
        results.append(std::move(contacts.contacts));
    }
    completion(results);
}

void ContactStoreManager::setLookup(const QObject *owner, Lookup lookup)
{
    if (lookup) {
        m_lookupOwner = owner;
        m_lookup = std::move(lookup);
    } else if (owner == m_lookupOwner) {
        m_lookupOwner = nullptr;
        m_lookup = nullptr;
    }
}

std::optional<Contact> ContactStoreManager::fetchContact(const QString &identifier)
{
    if (m_lookup) {
        if (SharedVCardContact found = m_lookup(identifier)) {
            return Contact(std::move(found));
        }
        Trace::line(u"Error fetching contact with id: '" + identifier + u"'from containers");
        return std::nullopt;
    }
    ContactStore::ContactResult result = m_store.unifiedContact(identifier);
    if (!result.contact) {
        Trace::line(u"Error fetching contact with id: '" + identifier + u"'from containers");
        return std::nullopt;
    }
    return Contact(std::move(*result.contact));
}
