#include "StoreProbe.h"

#include <QSqlDatabase>
#include <QSqlQuery>

int StoreProbe::scalar(const QString &file, const QString &sql)
{
    const QString connection = QStringLiteral("telverra-store-probe");
    int value = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery query(db);
            if (query.exec(sql)) {
                value = query.next() ? query.value(0).toInt() : 0;
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return value;
}
