#include <benchmark/benchmark.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include "Usage/CacheScan.h"
#include "Usage/PlanUsageReader.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;

namespace {

// A cache of so many entries, two of which hold usage answers.
class Cache {
public:
    explicit Cache(qint64 files)
    {
        const QByteArray other = UsageCache::entry(UsageCache::keyFor("/api/x"), QByteArray(1000, 'x'));
        for (qint64 i = 2; i < files; ++i)
            m_cache.write(u".config/Claude/Cache/Cache_Data/%1_0"_s.arg(i, 16, 16, QChar(u'0')), other);
        for (const QString &name : {u"usage1_0"_s, u"usage2_0"_s})
            m_cache.write(u".config/Claude/Cache/Cache_Data/"_s + name, UsageCache::usageEntry(10));
    }

    [[nodiscard]] QString folder() const { return m_cache.folder(); }
    [[nodiscard]] QByteArray nativeFolder() const { return QFile::encodeName(m_cache.folder()); }

private:
    UsageCache m_cache;
};

// The floor for everything below: what it costs to have the folder listed and every file's size and date
// told.
void bareListingAndStat(benchmark::State &state)
{
    const Cache cache(state.range(0));
    while (state.KeepRunning()) {
        DIR *folder = ::opendir(cache.nativeFolder().constData());
        while (const dirent *each = ::readdir(folder)) {
            struct stat info { };
            benchmark::DoNotOptimize(::fstatat(::dirfd(folder), each->d_name, &info, 0));
        }
        ::closedir(folder);
    }
}
BENCHMARK(bareListingAndStat)->Arg(1000)->Arg(20'000)->Unit(benchmark::kMillisecond);

void firstScan(benchmark::State &state)
{
    const Cache cache(state.range(0));
    while (state.KeepRunning()) {
        if (CacheScan(cache.nativeFolder(), "claude.ai").usageEntries().size() != 2)
            state.SkipWithError("the usage entries are not found");
    }
}
BENCHMARK(firstScan)->Arg(1000)->Arg(20'000)->Unit(benchmark::kMillisecond);

// As after a file has come or gone.
void laterScan(benchmark::State &state)
{
    const Cache cache(state.range(0));
    CacheScan scan(cache.nativeFolder(), "claude.ai");
    benchmark::DoNotOptimize(scan.usageEntries());
    while (state.KeepRunning()) {
        scan.forget();
        if (scan.usageEntries().size() != 2)
            state.SkipWithError("the usage entries are not found");
    }
}
BENCHMARK(laterScan)->Arg(1000)->Arg(20'000)->Unit(benchmark::kMillisecond);

void scanOfAnUnchangedFolder(benchmark::State &state)
{
    const Cache cache(state.range(0));
    CacheScan scan(cache.nativeFolder(), "claude.ai");
    for (int listing = 0; listing < 2; ++listing)
        benchmark::DoNotOptimize(scan.usageEntries());
    while (state.KeepRunning()) {
        if (scan.usageEntries().size() != 2)
            state.SkipWithError("the usage entries are not found");
    }
}
BENCHMARK(scanOfAnUnchangedFolder)->Arg(1000)->Arg(20'000)->Unit(benchmark::kMillisecond);

// One that knows the entries, which have changed since the last or have not.
void refresh(benchmark::State &state, bool hasChanged)
{
    const Cache cache(10);
    const auto entries = CacheScan(cache.nativeFolder(), "claude.ai").usageEntries();
    PlanUsageReader reader(cache.folder(), u"claude.ai"_s, [] { return u"/usr/bin/zstd"_s; });
    while (state.KeepRunning()) {
        for (const QByteArray &each : hasChanged ? entries : QList<QByteArray>())
            ::utimensat(AT_FDCWD, each.constData(), nullptr, 0);
        if (!std::holds_alternative<Reading>(reader.read(entries).result))
            state.SkipWithError("the usage is not read");
    }
}
void refreshAfterAChange(benchmark::State &state)
{
    refresh(state, true);
}
BENCHMARK(refreshAfterAChange)->Unit(benchmark::kMillisecond);
void refreshWithoutAChange(benchmark::State &state)
{
    refresh(state, false);
}
BENCHMARK(refreshWithoutAChange)->Unit(benchmark::kMillisecond);

} // namespace
