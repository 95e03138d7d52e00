#include "FavoritesDataService.h"

#include "common/Trace.h"
#include "contacts/ContactStoreManager.h"
#include "store/CoreDataManager.h"

#include <limits>

namespace {
const QList<SortDescriptor> byOrderIndex{{QStringLiteral("orderIndex"), true}};

qint32 nextOrderIndex(qsizetype count)
{
    if (count > std::numeric_limits<qint32>::max()) {
        qFatal("favourites list too long for a 32-bit order index");
    }
    return static_cast<qint32>(count);
}
} // namespace

FavoritesDataService::FavoritesDataService(CoreDataManager *store, ContactStoreManager *contactStore, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_contactStore(contactStore ? contactStore : &ContactStoreManager::shared())
{
    fetchFavoriteTelcos();
    fetchFavoriteContacts();
}

CoreDataManager &FavoritesDataService::store() const
{
    return m_store ? *m_store : CoreDataManager::shared();
}

void FavoritesDataService::fetchFavoriteTelcos()
{
    auto fetched = store().fetchEntities<FavoriteTelcoEntity>(std::nullopt, byOrderIndex);
    if (!fetched.ok()) {
        Trace::line(u"- Couldn't fetch saved favorite telcos:" + fetched.error);
        return;
    }
    m_savedFavoriteTelcos = std::move(fetched.records);
    Q_EMIT savedFavoriteTelcosChanged();
}

void FavoritesDataService::fetchFavoriteContacts()
{
    auto fetched = store().fetchEntities<FavoriteContactEntity>(std::nullopt, byOrderIndex);
    if (!fetched.ok()) {
        Trace::line(u"- Couldn't fetch saved favorite Cotnacts:" + fetched.error);
        return;
    }
    m_savedFavoriteContacts = std::move(fetched.records);
    Q_EMIT savedFavoriteContactsChanged();
}

void FavoritesDataService::addFavoriteTelco(const QString &name, const QString &type, const QString &value)
{
    auto telco = store().viewContext().insertNewObject<FavoriteTelcoEntity>();
    telco->setTelcoName(name);
    telco->setTelcoType(type);
    telco->setTelcoValue(value);
    telco->setOrderIndex(nextOrderIndex(m_savedFavoriteTelcos.size()));
    store().save();
}

void FavoritesDataService::addFavoriteContact(const QString &givenName, const QString &familyName,
                                              const QString &contactID)
{
    auto contact = store().viewContext().insertNewObject<FavoriteContactEntity>();
    contact->setContactID(contactID);
    contact->setFamilyName(familyName);
    contact->setGivenName(givenName);
    contact->setOrderIndex(nextOrderIndex(m_savedFavoriteContacts.size()));
    store().save();
}

QList<FavoriteContactEntityPtr> FavoritesDataService::favoriteContacts(const QString &contactID)
{
    auto fetched = store().fetchEntities<FavoriteContactEntity>(
        Predicate::fromFormat(u"%K = %@"_qs, {u"contactID"_qs, contactID}), byOrderIndex);
    return fetched.ok() ? fetched.records : QList<FavoriteContactEntityPtr>();
}

template<class T>
void FavoritesDataService::deleteEach(const QList<std::shared_ptr<T>> &records)
{
    for (const auto &record : records) {
        store().viewContext().deleteObject(record.get());
        store().save();
    }
}

void FavoritesDataService::removeFavoriteContact(const QString &contactID)
{
    deleteEach(favoriteContacts(contactID));
}

void FavoritesDataService::deleteAllFavoriteTelcos()
{
    deleteEach(QList(m_savedFavoriteTelcos));
}

void FavoritesDataService::deleteAllFavoriteContacts()
{
    deleteEach(QList(m_savedFavoriteContacts));
}

void FavoritesDataService::updateFavoriteTelco(const FavoriteTelcoEntityPtr &telco, const QString &name,
                                               const QString &value)
{
    if (telco) {
        telco->setTelcoName(name);
        telco->setTelcoValue(value);
    }
    store().save();
}

void FavoritesDataService::deleteFavoriteTelco(const FavoriteTelcoEntityPtr &telco)
{
    if (telco) {
        deleteEach(QList<FavoriteTelcoEntityPtr>{telco});
    }
}
