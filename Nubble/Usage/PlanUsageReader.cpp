#include "Usage/PlanUsageReader.h"

#include <QFile>

#include <algorithm>
#include <condition_variable>
#include <fcntl.h>
#include <mutex>
#include <vector>

#include "Platform/Logging.h"
#include "Platform/RegularFile.h"
#include "Usage/CacheEntry.h"
#include "Usage/UsageJson.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr qsizetype entriesRemembered = 1000; // those that the cache has long dropped among them

// Whether zstd came to an end that it would come to again with the same bytes. Exit statuses from 126 on say
// that it could not be run, as when it is being replaced by a newer one.
bool willEndAlike(const CommandEnd &end)
{
    return end.cause == CommandEnd::Cause::OutputLimit
        || (end.cause == CommandEnd::Cause::Itself && end.kind == CommandEnd::Kind::Exited && end.code < 126);
}

void pause(std::chrono::milliseconds span, const std::stop_token &stop)
{
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any().wait_for(lock, stop, span, [] { return false; });
}

} // namespace

// What a read goes by from its beginning to its end.
struct PlanUsageReader::Run {
    QString zstd;
    const std::stop_token &stop;
    bool hasTimedOut = false; // a zstd that hangs would do so for every entry

    [[nodiscard]] bool isOver() const { return hasTimedOut || stop.stop_requested(); }
};

struct PlanUsageReader::Entry {
    QByteArray path;
    FileState state;

    // Those that are there, newest first, otherwise in the order given: the first that gives a reading is the
    // newest reading, and the others need no child process.
    static std::vector<Entry> byModification(const QList<QByteArray> &paths)
    {
        std::vector<Entry> entries;
        for (const QByteArray &each : paths)
            if (const auto state = fileStateOf(each))
                entries.push_back({each, *state});
        std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
            return a.state.modified > b.state.modified;
        });
        return entries;
    }
};

PlanUsageReader::PlanUsageReader(
    const QString &cacheFolder, const QString &domain, FindTool findZstd, ReaderPace pace,
    OsRelease osRelease)
    : m_scan(QFile::encodeName(cacheFolder), domain.toUtf8()), m_domain(domain.toUtf8()),
      m_findZstd(std::move(findZstd)), m_pace(pace), m_osRelease(std::move(osRelease))
{
}

ReadOutcome PlanUsageReader::read(const QList<QByteArray> &known, const std::stop_token &stop)
{
    const auto zstd = m_findZstd();
    note("reading", zstd ? nullptr : "needs zstd");
    if (!zstd)
        return {ReadProblem::NoZstd, std::nullopt, Distribution::installCommand(m_osRelease(), u"zstd"_s)};
    Run run{*zstd, stop};
    ReadOutcome outcome = attempt(known, run);
    if (missesLast(outcome) && !run.isOver()) {
        pause(m_pace.secondLook, stop);
        outcome = attempt(known, run);
    }
    const Reading *reading = std::get_if<Reading>(&outcome.result);
    m_last = reading ? std::optional(*reading) : std::nullopt;
    return outcome;
}

void PlanUsageReader::forget()
{
    m_scan.forget();
    m_looks.removeIf([](const auto &each) { return !each.value().reading; });
}

// An entry is empty for a moment while a fresh answer is written over it. That must not pass for a cache
// without usage, nor bring an older answer back.
bool PlanUsageReader::missesLast(const ReadOutcome &outcome) const
{
    if (!m_last)
        return false;
    const Reading *reading = std::get_if<Reading>(&outcome.result);
    return !reading || reading->capturedAt < m_last->capturedAt
        || (outcome.entries && !outcome.entries->contains(m_last->entry));
}

ReadOutcome PlanUsageReader::attempt(const QList<QByteArray> &known, Run &run)
{
    if (const auto reading = newestReading(known, run))
        return {*reading, std::nullopt, std::nullopt};
    const QList<QByteArray> found = m_scan.usageEntries();
    note("the cache", found.isEmpty() ? "holds no usage answer, or cannot be listed" : nullptr);
    if (found.isEmpty())
        return {ReadProblem::NoCache, found, std::nullopt};
    if (const auto reading = newestReading(found, run))
        return {*reading, found, std::nullopt};
    return {ReadProblem::Unreadable, found, std::nullopt};
}

std::optional<Reading> PlanUsageReader::newestReading(const QList<QByteArray> &entries, Run &run)
{
    for (const Entry &each : Entry::byModification(entries)) {
        if (run.isOver())
            break;
        if (auto reading = readingOf(each, run))
            return reading;
    }
    return std::nullopt;
}

// The state is older than the look, never newer: a change in between is seen at the next read.
std::optional<Reading> PlanUsageReader::readingOf(const Entry &entry, Run &run)
{
    const auto last = m_looks.constFind(entry.path);
    if (last != m_looks.cend() && last->state == entry.state)
        return last->reading;
    const Look look = lookInto(entry.path, run);
    note(entry.path, look.obstacle);
    if (m_looks.size() >= entriesRemembered)
        m_looks.clear();
    if (look.lasts)
        m_looks.insert(entry.path, {entry.state, look.reading});
    return look.reading;
}

PlanUsageReader::Look PlanUsageReader::lookInto(const QByteArray &entry, Run &run) const
{
    const auto file = RegularFile::open(entry.constData(), AT_FDCWD);
    if (!file || file->size() >= CacheEntry::sizeLimit)
        return {{}, "cannot be opened or is too large", false};
    const auto bytes = file->read(0, file->size());
    const auto key = bytes ? CacheEntry::keyOf(*bytes) : std::nullopt;
    const auto body = bytes ? CacheEntry::compressedBodyOf(*bytes) : std::nullopt;
    if (!body || !CacheEntry::isUsageKey(*key, m_domain))
        return {{}, "holds no compressed usage answer", false};
    const CommandEnd end = decompress(*body, run);
    const bool lasts = willEndAlike(end);
    if (end.cause != CommandEnd::Cause::Itself || end.output.isEmpty())
        return {{}, "cannot be decompressed", lasts};
    const auto windows = parseUsageJson(end.output);
    if (!windows)
        return {{}, "tells of no plan window", lasts};
    const auto capturedAt = std::chrono::floor<std::chrono::milliseconds>(file->modified());
    return {Reading{entry, *windows, capturedAt}, nullptr, lasts};
}

// The exit status says nothing of the output: zstd complains about whatever follows the first frame, after it
// has written that frame out.
CommandEnd PlanUsageReader::decompress(QByteArrayView body, Run &run) const
{
    CommandEnd end = runCommand({run.zstd, {u"-dc"_s}}, body.toByteArray(), m_pace.decompression, run.stop);
    run.hasTimedOut = end.cause == CommandEnd::Cause::TimeLimit;
    return end;
}

// Says it when it is not what was said of it last; null when there is no obstacle.
void PlanUsageReader::note(const QByteArray &what, const char *obstacle)
{
    if (m_obstacles.value(what) == obstacle)
        return;
    qCDebug(logUsage).noquote() << what << (obstacle ? obstacle : "is well again");
    if (m_obstacles.size() >= entriesRemembered)
        m_obstacles.clear();
    m_obstacles.insert(what, obstacle);
}

} // namespace nubble
