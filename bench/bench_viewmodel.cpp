// The view model at scale: the contact search over 100,000 contacts (the part that runs away from the main thread,
// and what the main thread pays to start it), the history filter over 100,000 records, and start-up with 10,000
// contacts and 10,000 recent calls.
#include "VdirGenerator.h"
#include "app/HomeWindowViewModel.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "calls/Workspace.h"
#include "contacts/ContactSearchIndex.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/VCardDirectoryStore.h"
#include "recents/RecentCallsDataService.h"
#include "search/DesktopSearchIndex.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

namespace {

class NoWorkspace : public Workspace
{
public:
    std::optional<OpenFailure> open(const LaunchAddress &) override { return std::nullopt; }
    SchemeHandler handlerFor(const QString &) const override { return {}; }
    void openWithApplication(const LaunchAddress &, const QString &, OpenCompletion) override {}
};

// A home with `contacts` contacts and `recents` recent calls, and a view model over it.
struct Fixture
{
    Fixture(int contacts, int recents)
        : preferences(dir.path() + u"/telverra.conf")
        , calls(workspace, preferences, clipboard)
    {
        generateVdir(dir.path() + u"/contacts", contacts);
        {
            CoreDataManager seed(storeFile());
            const QDateTime start = QDateTime::currentDateTime().addDays(-300);
            for (int i = 0; i < recents; ++i) {
                auto record = seed.viewContext().insertNewObject<RecentCallEntity>();
                record->setDate(start.addSecs(i * 60));
                record->setCallType(u"telephone"_qs);
                record->setDestinationValue(u"+34 600 "_qs + QString::number(100000 + i));
            }
            seed.save();
        }
        preferences.setValue(PreferenceKey::fixedQuoteOnStartup, true);
    }
    QString storeFile() const { return dir.path() + u"/Telverra.sqlite"; }

    // A view model over the fixture's home, with what it is made from; ready once the contacts are published.
    struct Instance
    {
        explicit Instance(Fixture &fixture)
            : store(fixture.storeFile())
            , folder(QStringList{fixture.dir.path() + u"/contacts"})
            , manager(folder)
            , vm(HomeWindowViewModel::Environment{&fixture.preferences, &fixture.calls, &store, &manager,
                                                  &fixture.clipboard})
        {
            while (vm.allContacts().isEmpty()) {
                QCoreApplication::processEvents();
            }
        }
        CoreDataManager store;
        VCardDirectoryStore folder;
        ContactStoreManager manager;
        HomeWindowViewModel vm;
    };

    QTemporaryDir dir;
    Preferences preferences;
    NoWorkspace workspace;
    SystemClipboard clipboard;
    CallsManager calls;
};

void BM_ContactSearch(benchmark::State &state)
{
    static Fixture fixture(100'000, 0);
    Fixture::Instance instance(fixture);
    HomeWindowViewModel *vm = &instance.vm;
    const ContactSearchIndex index(vm->allContacts()); // made once per address book, with the first search
    const QString searches[] = {u"e"_qs, u"garcia"_qs, u"núñez12"_qs, u"empresa 4"_qs};
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            HomeWindowViewModel::matchingContacts(vm->allContacts(), index, searches[i++ % 4]).size());
    }
}
BENCHMARK(BM_ContactSearch)->Unit(benchmark::kMillisecond);

// The scan alone, without building the result list.
void BM_ContactSearchScanOnly(benchmark::State &state)
{
    static Fixture fixture(100'000, 0);
    Fixture::Instance instance(fixture);
    HomeWindowViewModel *vm = &instance.vm;
    const ContactSearchIndex index(vm->allContacts());
    const QString searches[] = {u"e"_qs, u"garcia"_qs, u"núñez12"_qs, u"empresa 4"_qs};
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(index.matches(searches[i++ % 4]).size());
    }
}
BENCHMARK(BM_ContactSearchScanOnly)->Unit(benchmark::kMillisecond);

// The index itself, made by the first search after the address book was (re)loaded.
void BM_ContactSearchIndex(benchmark::State &state)
{
    static Fixture fixture(100'000, 0);
    Fixture::Instance instance(fixture);
    HomeWindowViewModel *vm = &instance.vm;
    for (auto _ : state) {
        const ContactSearchIndex index(vm->allContacts());
        benchmark::DoNotOptimize(&index);
    }
}
BENCHMARK(BM_ContactSearchIndex)->Unit(benchmark::kMillisecond);

// What the main thread pays when the debounced search fires: the copy of the list it hands over and the start.
void BM_ContactSearchMainThreadShare(benchmark::State &state)
{
    static Fixture fixture(100'000, 0);
    Fixture::Instance instance(fixture);
    HomeWindowViewModel *vm = &instance.vm;
    for (auto _ : state) {
        QList<Contact> copy = vm->allContacts(); // the by-value copy the filter works on (shared, not deep)
        benchmark::DoNotOptimize(copy.size());
    }
}
BENCHMARK(BM_ContactSearchMainThreadShare)->Unit(benchmark::kNanosecond);

// A query of the desktop's search (KRunner, GNOME Shell) over 100,000 contacts: a common first name (the best results
// fill up at once), a family name, a number typed with blanks, an address, and a text nobody has (the whole scan).
void BM_DesktopSearchQuery(benchmark::State &state)
{
    static Fixture fixture(100'000, 0);
    static Fixture::Instance instance(fixture);
    static const DesktopSearchIndex index(instance.vm.allContacts(), {});
    static const QStringList queries[] = {
        {u"ana"_qs}, {u"garcía5000"_qs}, {u"+34"_qs, u"91"_qs, u"100"_qs}, {u"contact77777@"_qs}, {u"zzzz"_qs}};
    const QStringList &query = queries[state.range(0)];
    state.SetLabel(query.join(u' ').toStdString());
    for (auto _ : state) {
        benchmark::DoNotOptimize(index.search(query).size());
    }
}
BENCHMARK(BM_DesktopSearchQuery)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

// The desktop search's index, made at the first query after the address book is read.
void BM_DesktopSearchIndex(benchmark::State &state)
{
    static Fixture fixture(100'000, 0);
    Fixture::Instance instance(fixture);
    for (auto _ : state) {
        const DesktopSearchIndex index(instance.vm.allContacts(), {});
        benchmark::DoNotOptimize(index.size());
    }
}
BENCHMARK(BM_DesktopSearchIndex)->Unit(benchmark::kMillisecond);

void BM_FilteredRecentCalls(benchmark::State &state)
{
    static Fixture fixture(10, 100'000);
    Fixture::Instance instance(fixture);
    HomeWindowViewModel *vm = &instance.vm;
    vm->setSearchTextForRecents(u"600 1234"_qs);
    for (auto _ : state) {
        benchmark::DoNotOptimize(vm->filteredRecentCalls().size());
    }
}
BENCHMARK(BM_FilteredRecentCalls)->Unit(benchmark::kMillisecond);

void BM_ViewModelStartup(benchmark::State &state)
{
    static Fixture fixture(10'000, 10'000);
    for (auto _ : state) {
        Fixture::Instance instance(fixture);
        benchmark::DoNotOptimize(instance.vm.allRecentCalls().size());
    }
}
BENCHMARK(BM_ViewModelStartup)->Unit(benchmark::kMillisecond);

} // namespace

TELVERRA_BENCHMARK_MAIN()
