// make_vdir ROOT COUNT [BOOKS]: writes a generated vdir address book root (see VdirGenerator.h).
#include "VdirGenerator.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: make_vdir ROOT COUNT [BOOKS]\n");
        return 2;
    }
    const int books = argc > 3 ? QByteArray(argv[3]).toInt() : 10;
    return generateVdir(QString::fromLocal8Bit(argv[1]), QByteArray(argv[2]).toInt(), books) ? 0 : 1;
}
