#pragma once

#include "store/Entities.h"

#include <QObject>

class ContactStoreManager;
class CoreDataManager;

/// The user's favourites in the store: saved meeting links ("telcos") and favourite contacts, each list ascending
/// by its order index. Never reloads on its own: callers fetch again after a change.
class FavoritesDataService : public QObject
{
    Q_OBJECT
public:
    /// Fetches both lists at once, which loads the store on first use. Works on the shared store unless given another.
    explicit FavoritesDataService(CoreDataManager *store = nullptr, ContactStoreManager *contactStore = nullptr,
                                  QObject *parent = nullptr);

    /// The address book the favourite contacts are resolved against.
    ContactStoreManager &contactStore() const { return *m_contactStore; }

    const QList<FavoriteTelcoEntityPtr> &savedFavoriteTelcos() const { return m_savedFavoriteTelcos; }
    const QList<FavoriteContactEntityPtr> &savedFavoriteContacts() const { return m_savedFavoriteContacts; }
    /// Nothing fills this list: favourite actions are kept in the store's model only.
    const QList<FavoriteActionEntityPtr> &savedFavoriteActions() const { return m_savedFavoriteActions; }

    Q_INVOKABLE void fetchFavoriteTelcos();
    Q_INVOKABLE void fetchFavoriteContacts();
    /// orderIndex is the current length of the list, so the new link sorts last when the list is fresh.
    void addFavoriteTelco(const QString &name, const QString &type, const QString &value);
    void addFavoriteContact(const QString &givenName, const QString &familyName, const QString &contactID);
    /// The stored favourite contacts with exactly this identifier; empty when the fetch fails.
    QList<FavoriteContactEntityPtr> favoriteContacts(const QString &contactID);
    Q_INVOKABLE void removeFavoriteContact(const QString &contactID);
    Q_INVOKABLE void deleteAllFavoriteTelcos();
    Q_INVOKABLE void deleteAllFavoriteContacts();
    /// Deletes one saved link and saves (the favourites screen's "Remove from Favorites").
    void deleteFavoriteTelco(const FavoriteTelcoEntityPtr &telco);
    /// A saved link's new name and address, saved; its kind and place stay as they were (the link editor).
    void updateFavoriteTelco(const FavoriteTelcoEntityPtr &telco, const QString &name, const QString &value);

Q_SIGNALS:
    void savedFavoriteTelcosChanged();
    void savedFavoriteContactsChanged();

private:
    CoreDataManager &store() const;
    template<class T>
    void deleteEach(const QList<std::shared_ptr<T>> &records);

    CoreDataManager *m_store;
    ContactStoreManager *m_contactStore;
    QList<FavoriteTelcoEntityPtr> m_savedFavoriteTelcos;
    QList<FavoriteContactEntityPtr> m_savedFavoriteContacts;
    QList<FavoriteActionEntityPtr> m_savedFavoriteActions;
};
