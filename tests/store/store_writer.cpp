// Test helper: adds recent calls to the store in a loop, one save each, and prints "saved <value>" after each save
// returns. The durability test kills it at random moments.
#include "recents/RecentCallsDataService.h"
#include "store/CoreDataManager.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: store_writer STORE ROUND\n");
        return 2;
    }
    CoreDataManager store(QString::fromLocal8Bit(argv[1]));
    RecentCallsDataService recents(&store);
    const QString round = QString::fromLocal8Bit(argv[2]);
    for (int i = 0;; ++i) {
        const QString value = round + u'-' + QString::number(i);
        recents.addRecentCall(value, CallTypes::telephone, QString(), u"mobile"_qs);
        std::printf("saved %s\n", qPrintable(value));
        std::fflush(stdout);
    }
}
