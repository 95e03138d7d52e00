// Loading a vCard address book of 10,000 and 100,000 contacts (one file each), against merely reading the same
// files: the load's goal is at most 1.5 times the plain read.
#include "VdirGenerator.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

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

// Listing the folders and reading every file's bytes, nothing else.
void BM_ReadFilesOnly(benchmark::State &state)
{
    const QString root = generated(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        qint64 bytes = 0;
        QDirIterator files(root, {QStringLiteral("*.vcf")}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (file.open(QIODevice::ReadOnly)) {
                bytes += file.readAll().size();
            }
        }
        benchmark::DoNotOptimize(bytes);
    }
}
BENCHMARK(BM_ReadFilesOnly)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// What the application does: every container read and parsed, the list sorted and published.
void BM_LoadContacts(benchmark::State &state)
{
    const QString root = generated(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        VCardDirectoryStore store(QStringList{root});
        ContactStoreManager manager(store);
        ContactsDataService service(&manager);
        while (service.allContacts().isEmpty()) {
            QCoreApplication::processEvents();
        }
        benchmark::DoNotOptimize(service.allContacts().size());
    }
}
BENCHMARK(BM_LoadContacts)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

TELVERRA_BENCHMARK_MAIN()
