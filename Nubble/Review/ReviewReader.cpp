#include "Review/ReviewReader.h"

#include "Platform/Memory.h"
#include "Platform/ProcessTable.h"

using namespace Qt::StringLiterals;

namespace nubble {

ReviewReader::ReviewReader(const QString &folder, const ProcessTable &processes)
    : m_liveStatePath(folder + u"/live.json"), m_database(folder + u"/review.db"), m_processes(processes)
{
}

ReviewLook ReviewReader::look(const QDateTime &today, bool afresh, const std::stop_token &stop)
{
    if (const auto live = liveState())
        return {.live = live, .inbox = {}};
    return readDatabase(today, afresh, stop);
}

ReviewLook ReviewReader::readDatabase(const QDateTime &today, bool afresh, const std::stop_token &stop)
{
    const std::optional<DatabaseStamp> stamp = m_database.stamp(today);
    const bool isKnown = stamp && stamp == m_read;
    if (isKnown && m_isSettled && !afresh)
        return {};
    ReviewLook look{.live = {}, .inbox = m_database.read(today, stop)};
    releaseFreedMemory(); // of SQLite's caches, which would stay for this thread; readings are rare
    // What was written within the same tick of the file system's clock as the first reading shows at the
    // second.
    m_isSettled = isKnown;
    m_read = look.inbox ? stamp : std::nullopt;
    return look;
}

// A file that a crashed Quenwick has left behind names a process that is gone.
std::optional<LiveState> ReviewReader::liveState() const
{
    constexpr qint64 largestFile = 65'536;
    const auto file = RegularFile::open(m_liveStatePath);
    const auto bytes = file ? file->read(0, largestFile) : std::nullopt;
    const auto live = parseLiveState(bytes.value_or(QByteArray()));
    return live && m_processes.canSignal(live->pid) ? live : std::nullopt;
}

} // namespace nubble
