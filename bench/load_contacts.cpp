// load_contacts ROOT: loads a vdir address book root the way the application does (every container, sorted by
// family name) and prints the count and the time taken; run under /usr/bin/time -v for the peak memory.
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: load_contacts ROOT\n");
        return 2;
    }
    QElapsedTimer timer;
    timer.start();
    VCardDirectoryStore store(QStringList{QString::fromLocal8Bit(argv[1])});
    ContactStoreManager manager(store);
    ContactsDataService service(&manager);
    QObject::connect(&service, &ContactsDataService::allContactsChanged, &app, &QCoreApplication::quit);
    QCoreApplication::exec();
    std::printf("%lld contacts loaded in %lld ms\n", static_cast<long long>(service.allContacts().size()),
                static_cast<long long>(timer.elapsed()));
    return 0;
}
