#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QSet>

/// A list model whose rows carry a key that says which row is which across updates. A new list is applied as the
/// removal and insertion of the rows that changed when the rows both lists share stand in the same order in both (a
/// narrowed search, a call added to the history, a row removed), or as a move when one row moved, so that views keep
/// their place, their selection and their delegates; otherwise, or when most rows change, as a reset.
class KeyedListModel : public QAbstractListModel
{
public:
    using QAbstractListModel::QAbstractListModel;

protected:
    /// Replaces `rows` by `next`; `key(row)` identifies a row, and no two rows of a list share a key.
    template<class Row, class KeyOf>
    void replaceRows(QList<Row> &rows, QList<Row> next, KeyOf key);

private:
    // When `next` is `rows` with one row taken out and put back elsewhere, makes that move and says so.
    template<class Row, class KeyOf>
    bool moveOneRow(QList<Row> &rows, const QList<Row> &next, KeyOf key);
};

template<class Row, class KeyOf>
bool KeyedListModel::moveOneRow(QList<Row> &rows, const QList<Row> &next, KeyOf key)
{
    qsizetype first = 0;
    while (first < rows.size() && key(rows[first]) == key(next[first])) {
        ++first;
    }
    qsizetype last = rows.size() - 1;
    while (last > first && key(rows[last]) == key(next[last])) {
        --last;
    }
    // Moved down: rows[first] now stands at `last`, the rows between moved up by one; or the other way round.
    auto shifted = [&](qsizetype from, qsizetype to, qsizetype by) {
        for (qsizetype i = from; i <= to; ++i) {
            if (key(rows[i]) != key(next[i + by])) {
                return false;
            }
        }
        return true;
    };
    if (key(rows[first]) == key(next[last]) && shifted(first + 1, last, -1)) {
        beginMoveRows({}, int(first), int(first), {}, int(last + 1));
        rows.move(first, last);
        endMoveRows();
        return true;
    }
    if (key(rows[last]) == key(next[first]) && shifted(first, last - 1, 1)) {
        beginMoveRows({}, int(last), int(last), {}, int(first));
        rows.move(last, first);
        endMoveRows();
        return true;
    }
    return false;
}

template<class Row, class KeyOf>
void KeyedListModel::replaceRows(QList<Row> &rows, QList<Row> next, KeyOf key)
{
    if ((rows.isEmpty() || next.isEmpty()) && rows.size() + next.size() > 64) {
        // Nothing kept of a large list: it is filled or emptied at once, without making the keys of its rows.
        beginResetModel();
        rows = std::move(next);
        endResetModel();
        return;
    }
    using Key = decltype(key(rows.first()));
    QSet<Key> oldKeys;
    QSet<Key> newKeys;
    oldKeys.reserve(rows.size());
    newKeys.reserve(next.size());
    for (const Row &row : std::as_const(rows)) {
        oldKeys.insert(key(row));
    }
    for (const Row &row : std::as_const(next)) {
        newKeys.insert(key(row));
    }
    // The shared rows, in the order of each list: they must be the same sequence.
    qsizetype shared = 0;
    qsizetype i = 0;
    bool sameOrder = true;
    for (const Row &row : std::as_const(rows)) {
        const Key k = key(row);
        if (!newKeys.contains(k)) {
            continue;
        }
        while (i < next.size() && !oldKeys.contains(key(next[i]))) {
            ++i;
        }
        if (i == next.size() || key(next[i]) != k) {
            sameOrder = false;
            break;
        }
        ++i;
        ++shared;
    }
    if (!sameOrder && rows.size() == next.size() && oldKeys == newKeys && moveOneRow(rows, next, key)) {
        return;
    }
    const qsizetype changed = (rows.size() - shared) + (next.size() - shared);
    if (!sameOrder || (changed > 64 && changed > shared)) {
        beginResetModel();
        rows = std::move(next);
        endResetModel();
        return;
    }
    // Removals, from the last run to the first so that earlier rows keep their places.
    for (qsizetype end = rows.size(); end > 0;) {
        if (newKeys.contains(key(rows[end - 1]))) {
            --end;
            continue;
        }
        qsizetype begin = end - 1;
        while (begin > 0 && !newKeys.contains(key(rows[begin - 1]))) {
            --begin;
        }
        beginRemoveRows({}, int(begin), int(end - 1));
        rows.remove(begin, end - begin);
        endRemoveRows();
        end = begin;
    }
    // Insertions, first to last: what is left is the shared rows in the new order.
    for (qsizetype begin = 0; begin < next.size();) {
        if (oldKeys.contains(key(next[begin]))) {
            rows[begin] = next[begin]; // the same row, possibly with fresher content
            ++begin;
            continue;
        }
        qsizetype end = begin + 1;
        while (end < next.size() && !oldKeys.contains(key(next[end]))) {
            ++end;
        }
        beginInsertRows({}, int(begin), int(end - 1));
        rows.insert(begin, end - begin, Row());
        for (qsizetype r = begin; r < end; ++r) {
            rows[r] = next[r];
        }
        endInsertRows();
        begin = end;
    }
}
