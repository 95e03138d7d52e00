#pragma once

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <memory>

class CityDatabase;

/// The cities a typed text names, for the city field's completion list: name and, to tell namesakes apart, region
/// and country. Searches the offline city database as the text changes (a few milliseconds over all of it).
class CitySearchModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role
    {
        NameRole = Qt::UserRole + 1,
        DetailRole,
    };

    explicit CitySearchModel(QObject *parent = nullptr);
    ~CitySearchModel() override;

    const QString &text() const { return m_text; }
    void setText(const QString &text);
    int count() const { return int(m_found.size()); }
    /// A row's city as the view model's chooseWeatherCity() takes it: name, country, latitude, longitude.
    Q_INVOKABLE QVariantMap city(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void textChanged();
    void countChanged();

private:
    void search();

    QString m_text;
    std::shared_ptr<const CityDatabase> m_database;
    QList<qsizetype> m_found;
};
