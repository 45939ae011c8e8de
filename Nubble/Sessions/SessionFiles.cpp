#include "Sessions/SessionFiles.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <dirent.h>
#include <memory>
#include <string_view>
#include <thread>
#include <utility>

#include "Platform/Logging.h"
#include "Platform/RegularFile.h"
#include "Sessions/SessionParsing.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr qint64 largestRecord = 1'048'576; // bytes
constexpr qint64 largestPass = 4 * largestRecord;
constexpr auto longestWait = 5ms;
constexpr auto waitStep = 100us;
constexpr auto patience = 1s;     // with a record that has decoded and no longer does
constexpr auto settlesAfter = 3s; // longer than a tick of any file system's clock

bool isCandidate(const dirent &entry)
{
    const std::string_view name = entry.d_name;
    constexpr std::string_view extension = ".json";
    if (name.size() <= extension.size() || !name.ends_with(extension))
        return false;
    return entry.d_type == DT_REG || entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
}

} // namespace

SessionFiles::SessionFiles(const QString &claudeFolder)
    : m_claudeFolder(claudeFolder), m_folder(QFile::encodeName(claudeFolder + u"/sessions"))
{
}

SessionReading SessionFiles::read(const std::stop_token &stop)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir(m_folder.constData()), &::closedir);
    if (!folder)
        return {};
    const QList<Listed> listed = list(*folder);
    QList<Listed> due;
    for (const Listed &each : listed)
        if (each.record->state = RegularFile::stateOf(each.name.constData(), ::dirfd(folder.get()));
            isDue(*each.record))
            due.append(each);
    std::stable_sort(due.begin(), due.end(), [](const Listed &a, const Listed &b) {
        return a.record->readInPass < b.record->readInPass;
    });
    SessionReading reading{.sessions = QList<ClaudeSession>()};
    Allowance allowance{.bytes = largestPass, .waitUntil = std::nullopt};
    for (const Listed &each : due)
        if (!stop.stop_requested() && !bringUpToDate(::dirfd(folder.get()), each, allowance))
            reading.isBehind = true;
    for (const Listed &each : listed)
        if (each.record->session)
            reading.sessions->append(*each.record->session);
    return reading;
}

QList<SessionFiles::Listed> SessionFiles::list(DIR &folder)
{
    ++m_pass;
    QList<QByteArray> names;
    while (const dirent *entry = ::readdir(&folder)) {
        if (!isCandidate(*entry))
            continue;
        names.append(entry->d_name);
        m_records[names.last()].listedInPass = m_pass;
    }
    m_records.removeIf([this](const auto &each) { return each.value().listedInPass != m_pass; });
    QList<Listed> listed; // only now, since adding and removing moves records
    for (const QByteArray &name : names)
        listed.append({name, &m_records[name]});
    return listed;
}

// What has been written to long before it was read cannot have changed since without a trace.
bool SessionFiles::isDue(const Record &record)
{
    return !record.state || record.state != record.readState
        || record.readAt - record.state->changed < settlesAfter;
}

// A writer may be slow.
bool SessionFiles::keepsLastReading(Record &record)
{
    if (record.outcome != Outcome::Undecodable) {
        record.brokenSince.reset();
        return false;
    }
    const auto now = std::chrono::steady_clock::now();
    record.brokenSince = record.brokenSince.value_or(now);
    return record.session && now - *record.brokenSince < patience;
}

// False if another pass has to do it.
bool SessionFiles::bringUpToDate(int folder, const Listed &listed, Allowance &allowance) const
{
    constexpr std::array reasons{"is a record again", "is no record", "cannot be read", "is too large"};
    Record &record = *listed.record;
    const bool isSame = record.state == record.readState;
    const FileTime now = std::chrono::system_clock::now();
    std::optional<ClaudeSession> session;
    const Outcome outcome =
        readSettled(listed.name, folder, !isSame || record.session.has_value(), session, allowance);
    if (outcome == Outcome::Postponed)
        return isSame;
    if (outcome != std::exchange(record.outcome, outcome))
        qCDebug(logSessions) << listed.name.constData() << reasons.at(static_cast<size_t>(outcome));
    const bool keeps = keepsLastReading(record);
    if (session)
        session->folder = m_claudeFolder;
    if (!keeps)
        record.session = std::move(session);
    record.readState = keeps || outcome == Outcome::Unreadable ? std::nullopt : record.state;
    record.readInPass = m_pass;
    record.readAt = now;
    return !keeps;
}

// A record is rewritten in place, and cut to its new length only after that: between the two it does not
// decode. So such a file is read again, and again while the pass may wait, unless it is as it was when it was
// left out: then it is no writer's doing.
SessionFiles::Outcome SessionFiles::readSettled(
    const QByteArray &name, int folder, bool mayBeWritten, std::optional<ClaudeSession> &session,
    Allowance &allowance)
{
    Outcome outcome = readOnce(name, folder, session, allowance);
    while (outcome == Outcome::Undecodable && mayBeWritten && waitForWriter(allowance))
        outcome = readOnce(name, folder, session, allowance);
    return outcome;
}

SessionFiles::Outcome SessionFiles::readOnce(
    const QByteArray &name, int folder, std::optional<ClaudeSession> &session, Allowance &allowance)
{
    const auto file = RegularFile::open(name.constData(), folder);
    if (!file)
        return Outcome::Unreadable;
    if (file->size() > largestRecord)
        return Outcome::TooLarge;
    if (file->size() > allowance.bytes)
        return Outcome::Postponed;
    const auto bytes = file->read(0, file->size());
    if (!bytes)
        return Outcome::Unreadable;
    allowance.bytes -= bytes->size();
    session = decodeSession(*bytes);
    return session ? Outcome::Decoded : Outcome::Undecodable;
}

bool SessionFiles::waitForWriter(Allowance &allowance)
{
    const auto now = std::chrono::steady_clock::now();
    if (!allowance.waitUntil)
        allowance.waitUntil = now + longestWait;
    if (now >= *allowance.waitUntil)
        return false;
    std::this_thread::sleep_for(waitStep);
    return true;
}

} // namespace nubble
