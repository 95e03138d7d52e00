// Loading a vCard address book of 10,000 and 100,000 contacts (one file each), against merely reading the same
// files: the load's goal is at most 1.5 times the plain read.
//
// The page cache of this machine is trimmed in the background, so a read and a load timed minutes apart may meet the
// files in different states. BM_LoadAgainstRead therefore times the two back to back in every iteration and reports
// their ratio; the other benchmarks show each part alone.
#include "VdirGenerator.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "contacts/VCardReader.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <vector>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString generated(int count)
{
    static QTemporaryDir dir;
    const QString root = dir.path() + u"/root-" + QString::number(count);
    if (!QFile::exists(root) && !generateVdir(root, count)) {
        qFatal("could not write the address book");
    }
    return root;
}

// Listing the folders and reading every file's bytes with Qt, nothing else.
qint64 readWithQt(const QString &root)
{
    qint64 bytes = 0;
    QDirIterator files(root, {QStringLiteral("*.vcf")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly)) {
            bytes += file.readAll().size();
        }
    }
    return bytes;
}

// The same with the fewest system calls there are, on one thread: one listing per folder, then open, fstat, read and
// close per file.
qint64 readRaw(const QString &rootPath)
{
    static std::vector<char> buffer(1 << 20);
    const QByteArray root = QFile::encodeName(rootPath);
    qint64 bytes = 0;
    DIR *books = ::opendir(root.constData());
    while (const dirent *book = ::readdir(books)) {
        if (book->d_name[0] == '.') {
            continue;
        }
        const int folder = ::openat(dirfd(books), book->d_name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        DIR *files = ::fdopendir(folder);
        while (const dirent *file = ::readdir(files)) {
            const int fd = file->d_name[0] == '.' ? -1 : ::openat(folder, file->d_name, O_RDONLY | O_CLOEXEC);
            if (fd < 0) {
                continue;
            }
            struct stat status = {};
            ::fstat(fd, &status);
            bytes += ::read(fd, buffer.data(), std::min(buffer.size(), static_cast<size_t>(status.st_size) + 1));
            ::close(fd);
        }
        ::closedir(files);
    }
    ::closedir(books);
    return bytes;
}

// What the application does: every container read and parsed, the list sorted and published.
struct LoadedBook
{
    std::unique_ptr<VCardDirectoryStore> store;
    std::unique_ptr<ContactStoreManager> manager;
    std::unique_ptr<ContactsDataService> service;
};

LoadedBook load(const QString &root)
{
    LoadedBook book;
    book.store = std::make_unique<VCardDirectoryStore>(QStringList{root});
    book.manager = std::make_unique<ContactStoreManager>(*book.store);
    book.service = std::make_unique<ContactsDataService>(book.manager.get());
    while (book.service->allContacts().isEmpty()) {
        QCoreApplication::processEvents();
    }
    return book;
}

void BM_ReadFilesWithQt(benchmark::State &state)
{
    const QString root = generated(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(readWithQt(root));
    }
}
BENCHMARK(BM_ReadFilesWithQt)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_ReadFilesRaw(benchmark::State &state)
{
    const QString root = generated(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(readRaw(root));
    }
}
BENCHMARK(BM_ReadFilesRaw)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// Parsing alone: the same files already in memory, on one thread.
void BM_ParseOnly(benchmark::State &state)
{
    const QString root = generated(static_cast<int>(state.range(0)));
    QList<QByteArray> files;
    QDirIterator paths(root, {QStringLiteral("*.vcf")}, QDir::Files, QDirIterator::Subdirectories);
    while (paths.hasNext()) {
        QFile file(paths.next());
        if (file.open(QIODevice::ReadOnly)) {
            files.append(file.readAll());
        }
    }
    for (auto _ : state) {
        qsizetype cards = 0;
        for (const QByteArray &file : std::as_const(files)) {
            cards += VCardReader::read(file, root).size();
        }
        benchmark::DoNotOptimize(cards);
    }
}
BENCHMARK(BM_ParseOnly)->Arg(10'000)->Unit(benchmark::kMillisecond);

void BM_LoadContacts(benchmark::State &state)
{
    const QString root = generated(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        LoadedBook book = load(root);
        benchmark::DoNotOptimize(book.service->allContacts().size());
        state.PauseTiming(); // letting go of the address book is not part of loading it
        book = {};
        state.ResumeTiming();
    }
}
BENCHMARK(BM_LoadContacts)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// The goal itself: in each iteration the plain read (raw, then with Qt) and the load, back to back. The counters are
// the medians over the iterations, the ratios those of the medians.
void BM_LoadAgainstRead(benchmark::State &state)
{
    const QString root = generated(static_cast<int>(state.range(0)));
    readRaw(root); // into the page cache
    std::vector<double> raw, qt, loads;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        benchmark::DoNotOptimize(readRaw(root));
        raw.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        timer.restart();
        benchmark::DoNotOptimize(readWithQt(root));
        qt.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        timer.restart();
        LoadedBook book = load(root);
        loads.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        book = {};
    }
    auto median = [](std::vector<double> values) {
        std::sort(values.begin(), values.end());
        return values.empty() ? 0.0 : values[values.size() / 2];
    };
    state.counters["read_raw_ms"] = median(raw);
    state.counters["read_qt_ms"] = median(qt);
    state.counters["load_ms"] = median(loads);
    state.counters["load/raw"] = median(loads) / median(raw);
    state.counters["load/qt"] = median(loads) / median(qt);
}
BENCHMARK(BM_LoadAgainstRead)->Arg(10'000)->Arg(100'000)->Iterations(7)->Unit(benchmark::kMillisecond);

} // namespace

TELVERRA_BENCHMARK_MAIN()
