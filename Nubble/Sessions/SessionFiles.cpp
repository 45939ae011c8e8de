#include "Sessions/SessionFiles.h"

#include <QFile>

#include <array>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string_view>
#include <thread>

#include "Platform/Logging.h"
#include "Platform/RegularFile.h"
#include "Sessions/SessionParsing.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr qint64 largestRecord = 1'048'576; // bytes
constexpr qint64 largestPass = 64 * largestRecord;
constexpr auto longestWait = 2ms;
constexpr auto waitStep = 100us;

bool isCandidate(const dirent &entry)
{
    const std::string_view name = entry.d_name;
    constexpr std::string_view extension = ".json";
    if (name.size() <= extension.size() || !name.ends_with(extension))
        return false;
    return entry.d_type == DT_REG || entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
}

} // namespace

SessionFiles::SessionFiles(const QString &folder) : m_folder(QFile::encodeName(folder)) { }

std::optional<QList<ClaudeSession>> SessionFiles::read()
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir(m_folder.constData()), &::closedir);
    if (!folder)
        return std::nullopt;
    ++m_pass;
    QList<ClaudeSession> sessions;
    Allowance allowance{.bytes = largestPass, .waitUntil = std::nullopt};
    while (const dirent *entry = ::readdir(folder.get())) {
        if (!isCandidate(*entry))
            continue;
        Record &record = recordNamed(entry->d_name);
        const bool wasLeftOut = record.pass != 0 && !record.session;
        record.pass = m_pass;
        settleRecord(entry->d_name, ::dirfd(folder.get()), wasLeftOut, record, allowance);
        if (record.session)
            sessions.append(*record.session);
    }
    m_records.removeIf([this](const auto &each) { return each.value().pass != m_pass; });
    return sessions;
}

SessionFiles::Record &SessionFiles::recordNamed(const char *name)
{
    const auto known =
        m_records.find(QByteArray::fromRawData(name, static_cast<qsizetype>(std::strlen(name))));
    return known != m_records.end() ? *known : m_records[QByteArray(name)];
}

// A record is rewritten in place, and cut to its new length only after that: between the two it does not
// decode. So such a file is read again, and again while the pass may wait, unless these very bytes were left
// out at the last pass: then it is no writer's doing.
void SessionFiles::settleRecord(
    const char *name, int folder, bool wasLeftOut, Record &record, Allowance &allowance)
{
    const QByteArray before = record.bytes;
    Outcome outcome = readRecord(name, folder, record, allowance);
    if (outcome == Outcome::Undecodable)
        outcome = readRecord(name, folder, record, allowance);
    while (outcome == Outcome::Undecodable && !(wasLeftOut && record.bytes == before)
           && waitForWriter(allowance))
        outcome = readRecord(name, folder, record, allowance);
    setOutcome(name, outcome, record);
}

void SessionFiles::setOutcome(const char *name, Outcome outcome, Record &record)
{
    constexpr std::array reasons{"is a record again", "is no record", "cannot be read", "is too large"};
    if (outcome != record.outcome)
        qCDebug(logSessions) << name << reasons.at(static_cast<size_t>(outcome));
    record.outcome = outcome;
    if (outcome == Outcome::Unreadable || outcome == Outcome::TooLarge) {
        record.bytes.clear();
        record.session.reset();
    }
}

SessionFiles::Outcome SessionFiles::readRecord(
    const char *name, int folder, Record &record, Allowance &allowance)
{
    const auto file = RegularFile::open(name, folder);
    if (!file)
        return Outcome::Unreadable;
    if (file->size() > std::min(largestRecord, allowance.bytes))
        return Outcome::TooLarge;
    auto bytes = file->read(0, file->size());
    if (!bytes)
        return Outcome::Unreadable;
    allowance.bytes -= bytes->size();
    if (*bytes != record.bytes) {
        record.bytes = std::move(*bytes);
        record.session = decodeSession(record.bytes);
    }
    return record.session ? Outcome::Decoded : Outcome::Undecodable;
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
