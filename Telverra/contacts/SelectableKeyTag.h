#pragma once

#include "calls/CallTypes.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

/// One of a contact's details as a chip the user can choose: the label shown, the value (a number or an address) and
/// the kind of call the chip's detail is for.
struct SelectableKeyTag
{
    Q_GADGET
    Q_PROPERTY(QString id READ id CONSTANT)
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(QString number MEMBER number CONSTANT)
    Q_PROPERTY(QString type READ typeRawValue CONSTANT)

public:
    QString text;
    QString number;
    CallTypes type = CallTypes::telephone;

    /// Tells one chip of a row from the others.
    QString id() const { return text + u'\x1f' + number; }
    QString typeRawValue() const { return rawValue(type); }

    /// One chip per value of the label groups, labels in order, values in stored order.
    static QList<SelectableKeyTag> fromGroups(const QMap<QString, QStringList> &groups, CallTypes type);

    friend bool operator==(const SelectableKeyTag &, const SelectableKeyTag &) = default;
};
