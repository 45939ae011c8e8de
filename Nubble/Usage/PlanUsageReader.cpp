#include "Usage/PlanUsageReader.h"

#include <QFile>

#include <algorithm>
#include <condition_variable>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <vector>

#include "Platform/Logging.h"
#include "Platform/RegularFile.h"
#include "Usage/CacheEntry.h"
#include "Usage/UsageJson.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

FileTime modificationOf(const QByteArray &path)
{
    struct stat info { };
    return ::stat(path.constData(), &info) == 0 ? fileTimeOf(info.st_mtim) : FileTime();
}

// Newest first, otherwise in the order given: the first that gives a reading is the newest reading, and the
// others need no child process.
QList<QByteArray> byModification(const QList<QByteArray> &entries)
{
    std::vector<std::pair<FileTime, QByteArray>> dated;
    for (const QByteArray &each : entries)
        dated.emplace_back(modificationOf(each), each);
    std::stable_sort(
        dated.begin(), dated.end(), [](const auto &a, const auto &b) { return a.first > b.first; });
    QList<QByteArray> sorted;
    for (const auto &each : dated)
        sorted.append(each.second);
    return sorted;
}

void pause(std::chrono::milliseconds span, const std::stop_token &stop)
{
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any().wait_for(lock, stop, span, [] { return false; });
}

} // namespace

PlanUsageReader::PlanUsageReader(
    const QString &cacheFolder, const QString &domain, FindTool findZstd, ReaderPace pace)
    : m_scan(QFile::encodeName(cacheFolder), domain.toUtf8()), m_domain(domain.toUtf8()),
      m_findZstd(std::move(findZstd)), m_pace(pace)
{
}

ReadOutcome PlanUsageReader::read(const QList<QByteArray> &known, const std::stop_token &stop)
{
    const auto zstd = m_findZstd();
    note("reading", zstd ? nullptr : "needs zstd");
    if (!zstd)
        return {ReadProblem::NoZstd, std::nullopt};
    ReadOutcome outcome = attempt(known, *zstd, stop);
    if (missesLast(outcome)) {
        pause(m_pace.secondLook, stop);
        outcome = attempt(known, *zstd, stop);
    }
    const Reading *reading = std::get_if<Reading>(&outcome.result);
    m_last = reading ? std::optional(*reading) : std::nullopt;
    return outcome;
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

ReadOutcome PlanUsageReader::attempt(
    const QList<QByteArray> &known, const QString &zstd, const std::stop_token &stop)
{
    if (const auto reading = newestReading(known, zstd, stop))
        return {*reading, std::nullopt};
    const QList<QByteArray> found = m_scan.usageEntries();
    note("the cache", found.isEmpty() ? "holds no usage answer, or cannot be listed" : nullptr);
    if (found.isEmpty())
        return {ReadProblem::NoCache, found};
    if (const auto reading = newestReading(found, zstd, stop))
        return {*reading, found};
    return {ReadProblem::Unreadable, found};
}

std::optional<Reading> PlanUsageReader::newestReading(
    const QList<QByteArray> &entries, const QString &zstd, const std::stop_token &stop)
{
    for (const QByteArray &each : byModification(entries)) {
        if (stop.stop_requested())
            break;
        if (auto reading = readingOf(each, zstd, stop))
            return reading;
    }
    return std::nullopt;
}

// Empty when zstd writes nothing or is ended. Its exit status means nothing: it complains about whatever
// follows the first frame, after it has written that frame out.
QByteArray PlanUsageReader::decompressed(
    QByteArrayView body, const QString &zstd, const std::stop_token &stop) const
{
    const CommandEnd end = runCommand({zstd, {u"-dc"_s}}, body.toByteArray(), m_pace.decompression, stop);
    return end.cause == CommandEnd::Cause::Itself ? end.output : QByteArray();
}

std::optional<Reading> PlanUsageReader::readingOf(
    const QByteArray &entry, const QString &zstd, const std::stop_token &stop)
{
    const auto refused = [&](const char *why) {
        note(entry, why);
        return std::nullopt;
    };
    const auto file = RegularFile::open(entry.constData(), AT_FDCWD);
    if (!file || file->size() >= CacheEntry::sizeLimit)
        return refused("cannot be opened or is too large");
    const auto bytes = file->read(0, file->size());
    const auto key = bytes ? CacheEntry::keyOf(*bytes) : std::nullopt;
    const auto body = bytes ? CacheEntry::compressedBodyOf(*bytes) : std::nullopt;
    if (!body || !CacheEntry::isUsageKey(*key, m_domain))
        return refused("holds no compressed usage answer");
    const QByteArray json = decompressed(*body, zstd, stop);
    if (json.isEmpty())
        return refused("cannot be decompressed");
    const auto windows = parseUsageJson(json);
    if (!windows)
        return refused("tells of no plan window");
    note(entry, nullptr);
    return Reading{entry, *windows, std::chrono::floor<std::chrono::milliseconds>(file->modified())};
}

// Says it when it is not what was said of it last; null when there is no obstacle.
void PlanUsageReader::note(const QByteArray &what, const char *obstacle)
{
    constexpr qsizetype remembered = 1000; // names that the cache has long dropped among them
    if (m_obstacles.value(what) == obstacle)
        return;
    qCDebug(logUsage).noquote() << what << (obstacle ? obstacle : "is well again");
    if (m_obstacles.size() >= remembered)
        m_obstacles.clear();
    m_obstacles.insert(what, obstacle);
}

} // namespace nubble
