#include "StoreProbe.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {
// Runs the statement on a connection of its own and hands the query to `read`.
template<class Read>
void query(const QString &file, const QString &sql, Read read)
{
    const QString connection = QStringLiteral("telverra-store-probe");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery statement(db);
            if (statement.exec(sql)) {
                read(statement);
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
}
} // namespace

int StoreProbe::scalar(const QString &file, const QString &sql)
{
    int value = -1;
    query(file, sql, [&value](QSqlQuery &statement) { value = statement.next() ? statement.value(0).toInt() : 0; });
    return value;
}

QStringList StoreProbe::rows(const QString &file, const QString &sql)
{
    QStringList rows;
    query(file, sql, [&rows](QSqlQuery &statement) {
        while (statement.next()) {
            QStringList columns;
            for (int i = 0; i < statement.record().count(); ++i) {
                columns.append(statement.value(i).toString());
            }
            rows.append(columns.join(u'|'));
        }
    });
    return rows;
}
