#include "VdirGenerator.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

namespace {
const char *const givenNames[] = {"Ana", "José", "Élodie", "Lucía", "Chen", "Amara", "Johnny", "María", "Søren", "Eva"};
const char *const familyNames[] = {"García", "Álvarez", "Dubois", "Müller",   "Núñez",
                                   "Smith",  "O'Neil",  "Zapata", "Kowalski", "Tanaka"};
} // namespace

bool generateVdir(const QString &root, int count, int books)
{
    QRandomGenerator random(42); // the same books at every run
    for (int book = 0; book < books; ++book) {
        if (!QDir().mkpath(root + u"/book-" + QString::number(book))) {
            return false;
        }
    }
    for (int i = 0; i < count; ++i) {
        const QByteArray given = givenNames[random.bounded(10)];
        const QByteArray family = familyNames[random.bounded(10)] + QByteArray::number(i);
        QByteArray card = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:gen-" + QByteArray::number(i) + "\r\nN:" + family + ';' +
                          given + ";;;\r\nFN:" + given + ' ' + family + "\r\nTEL;TYPE=CELL:+34 6" +
                          QByteArray::number(10000000 + random.bounded(89999999)) + "\r\nitem1.TEL:+34 91" +
                          QByteArray::number(1000000 + random.bounded(8999999)) +
                          "\r\nitem1.X-ABLabel:Oficina\r\nEMAIL;TYPE=INTERNET;TYPE=HOME:contact" +
                          QByteArray::number(i) + "@example.org\r\n";
        if (i % 7 == 0) {
            card += "ORG:Empresa " + QByteArray::number(i % 100) + "\r\n";
        }
        card += "END:VCARD\r\n";
        QFile file(root + u"/book-" + QString::number(i % books) + u"/contact-" + QString::number(i) + u".vcf");
        if (!file.open(QIODevice::WriteOnly) || file.write(card) != card.size()) {
            return false;
        }
    }
    return true;
}
