#include "FortuneQuotes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QRandomGenerator>
#include <QStringDecoder>
#include <QtEndian>

namespace FortuneQuotes {

namespace {

// strfile's index: a header of five big-endian 32-bit words and the delimiter, then the offsets of the entries.
constexpr qint64 headerSize = 24;
constexpr quint32 rotatedFlag = 0x4;
// The longest entry read: a saying of 160 characters in any script, with its line breaks, fits well within it.
constexpr qint64 longestRead = 4096;

struct FortuneFile
{
    QString text;
    QString index;
    quint32 count = 0;
    char delimiter = '%';
};

std::optional<FortuneFile> openIndex(const QFileInfo &text)
{
    FortuneFile file{text.filePath(), text.filePath() + u".dat"};
    QFile index(file.index);
    if (!index.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray header = index.read(headerSize);
    if (header.size() != headerSize) {
        return std::nullopt;
    }
    file.count = qFromBigEndian<quint32>(header.constData() + 4);
    const quint32 flags = qFromBigEndian<quint32>(header.constData() + 16);
    file.delimiter = header.at(20);
    if (file.count == 0 || (flags & rotatedFlag) || index.size() < headerSize + 4 * (qint64(file.count) + 1)) {
        return std::nullopt;
    }
    return file;
}

// The saying at `entry`, when it is one short paragraph of plain text.
std::optional<QString> saying(const FortuneFile &file, quint32 entry)
{
    QFile index(file.index);
    QFile text(file.text);
    if (!index.open(QIODevice::ReadOnly) || !text.open(QIODevice::ReadOnly) || !index.seek(headerSize + 4 * entry)) {
        return std::nullopt;
    }
    const QByteArray offsets = index.read(8);
    if (offsets.size() != 8) {
        return std::nullopt;
    }
    const qint64 start = qFromBigEndian<quint32>(offsets.constData());
    const qint64 end = qFromBigEndian<quint32>(offsets.constData() + 4);
    if (end <= start || end - start > longestRead || !text.seek(start)) {
        return std::nullopt;
    }
    QByteArray bytes = text.read(end - start);
    // The entry runs up to its delimiter line.
    const QByteArray delimiterLine = QByteArray(1, file.delimiter) + '\n';
    if (const qsizetype cut = bytes.indexOf(QByteArray('\n' + delimiterLine)); cut >= 0) {
        bytes.truncate(cut);
    } else if (bytes.startsWith(delimiterLine)) {
        return std::nullopt;
    }
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString decoded = utf8(bytes);
    if (utf8.hasError()) {
        return std::nullopt;
    }
    QStringList lines = decoded.split(u'\n');
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty()) {
        lines.removeLast();
    }
    QString joined;
    for (QString line : std::as_const(lines)) {
        if (line.endsWith(u'\r')) {
            line.chop(1);
        }
        if (line.trimmed().isEmpty()) {
            return std::nullopt; // a second paragraph
        }
        for (QChar c : line) {
            if (c.category() == QChar::Other_Control && c != u'\t') {
                return std::nullopt; // backspaces for overstriking, terminal escapes
            }
        }
        // "\t\t-- Mark Twain": the attribution, after a dash.
        const QString trimmed = line.trimmed();
        joined += (trimmed.startsWith(u"-- ") ? u"— " + trimmed.mid(3) : line) + u' ';
    }
    joined = joined.simplified();
    if (joined.isEmpty() || joined.size() > maximumLength) {
        return std::nullopt;
    }
    return joined;
}

} // namespace

QString folderFor(const QString &root, bool spanish)
{
    return spanish ? root + u"/es" : root;
}

std::optional<QString> pick(const QString &folder, QRandomGenerator &random)
{
    QList<FortuneFile> files;
    quint64 total = 0; // below 2^32: an index counts its entries in 32 bits, and there are a few dozen files
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        // The ".u8" names are links to the same files for UTF-8 locales.
        if (entry.suffix() == u"dat" || entry.suffix() == u"u8") {
            continue;
        }
        if (std::optional<FortuneFile> file = openIndex(entry)) {
            total += file->count;
            files.append(std::move(*file));
        }
    }
    if (total == 0) {
        return std::nullopt;
    }
    // Entries at random, each equally likely; then, as few are short enough in some files, every entry in turn from
    // a random one, so that a saying is found whenever there is one.
    auto at = [&files](quint64 position) -> std::optional<QString> {
        for (const FortuneFile &file : std::as_const(files)) {
            if (position < file.count) {
                return saying(file, quint32(position));
            }
            position -= file.count;
        }
        return std::nullopt;
    };
    for (int attempt = 0; attempt < 64; ++attempt) {
        if (std::optional<QString> found = at(random.bounded(quint32(total)))) {
            return found;
        }
    }
    const quint64 first = random.bounded(quint32(total));
    for (quint64 step = 0; step < total; ++step) {
        if (std::optional<QString> found = at((first + step) % total)) {
            return found;
        }
    }
    return std::nullopt;
}

} // namespace FortuneQuotes
