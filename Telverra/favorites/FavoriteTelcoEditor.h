#pragma once

#include "store/Entities.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class FavoritesDataService;

/// What the meeting-link editor keeps and does: the two texts, whether each is filled in, and the save. A new link is
/// stored with the kind its address is recognised as; an edited one keeps its kind and place, whatever its new address.
/// The checks never stop a save: empty texts are saved as they are.
class FavoriteTelcoEditor : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QObject *service READ service WRITE setService NOTIFY serviceChanged)
    /// In edit mode, the link being edited (the favourites' "record", as the view model holds it).
    Q_PROPERTY(QVariant record READ record WRITE setRecord NOTIFY recordChanged)
    Q_PROPERTY(bool isEditMode MEMBER m_isEditMode NOTIFY isEditModeChanged)
    Q_PROPERTY(QString telcoName READ telcoName WRITE setTelcoName NOTIFY telcoNameChanged)
    Q_PROPERTY(QString telcoValue READ telcoValue WRITE setTelcoValue NOTIFY telcoValueChanged)
    Q_PROPERTY(bool telcoNameIsValid READ telcoNameIsValid NOTIFY telcoNameChanged)
    Q_PROPERTY(bool telcoURLIsValid READ telcoURLIsValid NOTIFY telcoValueChanged)
public:
    explicit FavoriteTelcoEditor(QObject *parent = nullptr);

    QObject *service() const;
    void setService(QObject *service);
    QVariant record() const { return QVariant::fromValue(m_record); }
    void setRecord(const QVariant &record);
    const QString &telcoName() const { return m_telcoName; }
    void setTelcoName(const QString &name);
    const QString &telcoValue() const { return m_telcoValue; }
    void setTelcoValue(const QString &value);
    bool telcoNameIsValid() const { return m_telcoNameIsValid; }
    bool telcoURLIsValid() const { return m_telcoURLIsValid; }

    /// "Add Telco": creates or edits the link.
    Q_INVOKABLE void save();

Q_SIGNALS:
    void serviceChanged();
    void recordChanged();
    void isEditModeChanged();
    void telcoNameChanged();
    void telcoValueChanged();

private:
    QPointer<FavoritesDataService> m_service;
    FavoriteTelcoEntityPtr m_record;
    bool m_isEditMode = false;
    QString m_telcoName;
    QString m_telcoValue;
    bool m_telcoNameIsValid = false;
    bool m_telcoURLIsValid = false;
};
