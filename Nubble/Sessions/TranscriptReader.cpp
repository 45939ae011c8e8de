#include "Sessions/TranscriptReader.h"

#include <algorithm>
#include <array>
#include <fcntl.h>

#include "Platform/RegularFile.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr std::array<qint64, 3> tailLengths{262'144, 2'097'152, 8'388'608};

std::optional<QByteArray> readCounted(const RegularFile &file, qint64 from, qint64 to, FileCosts &costs)
{
    auto bytes = file.read(from, to - from);
    costs.bytes += bytes ? bytes->size() : 0;
    return bytes;
}

// What is newer replaces what is known; what is missing in it does not.
void merge(TranscriptValues &known, TranscriptValues newer)
{
    const auto replace = [](auto &old, auto &value) { old = value ? std::move(value) : std::move(old); };
    replace(known.title, newer.title);
    replace(known.lastPrompt, newer.lastPrompt);
    replace(known.end, newer.end);
}

// How long Claude is taken to go on with it though nothing more is written.
std::chrono::milliseconds lasting(TranscriptEnd::Kind kind)
{
    switch (kind) {
    case TranscriptEnd::Kind::Asked:
        return 10min;
    case TranscriptEnd::Kind::Speaking:
        return 5s;
    case TranscriptEnd::Kind::Answered:
        break;
    }
    return 0ms;
}

} // namespace

bool TranscriptReader::read(const QByteArray &path, FileCosts &costs)
{
    const auto file = RegularFile::open(path.constData(), AT_FDCWD);
    if (!file)
        return false;
    ++costs.opens;
    if (m_offset && file->size() < *m_offset)
        *this = {}; // rewritten
    if (m_offset && file->size() - *m_offset <= tailLengths.back())
        return readAppended(*file, costs);
    return readTail(*file, costs);
}

SessionDetail TranscriptReader::detail() const
{
    SessionDetail detail{m_values.title, m_values.lastPrompt};
    if (m_values.end) {
        detail.question = m_values.end->question;
        detail.work = TranscribedWork{m_endedAt, m_grewAt + lasting(m_values.end->kind)};
    }
    return detail;
}

void TranscriptReader::take(TranscriptValues newer, const RegularFile &file)
{
    m_grewAt = std::chrono::floor<std::chrono::milliseconds>(file.modified());
    if (newer.end)
        m_endedAt = m_grewAt;
    merge(m_values, std::move(newer));
}

// Each longer tail is read only up to the first whole line of the one before.
bool TranscriptReader::readTail(const RegularFile &file, FileCosts &costs)
{
    TranscriptValues values;
    std::optional<qint64> offset;
    qint64 start = file.size();
    qint64 end = file.size();
    for (const qint64 length : tailLengths) {
        if (start == 0 || (values.title && values.lastPrompt && values.end))
            break;
        start = std::max<qint64>(0, file.size() - length);
        const auto bytes = readCounted(file, start, end, costs);
        if (!bytes)
            return false;
        const qsizetype first = start == 0 ? 0 : bytes->indexOf('\n') + 1; // the line before it is cut
        const qsizetype last = bytes->lastIndexOf('\n') + 1;
        findNewest(QByteArrayView(*bytes).sliced(first, last - first), values);
        if (last > 0 && !offset)
            offset = start + last;
        if (last > 0)
            end = start + first;
    }
    // Of a last line that is longer than the tail nothing can be used.
    m_offset = offset.value_or(start == 0 ? 0 : file.size());
    take(std::move(values), file);
    return true;
}

bool TranscriptReader::readAppended(const RegularFile &file, FileCosts &costs)
{
    if (file.size() == *m_offset)
        return true;
    const auto bytes = readCounted(file, *m_offset, file.size(), costs);
    if (!bytes)
        return false;
    const qsizetype last = bytes->lastIndexOf('\n') + 1;
    TranscriptValues newer;
    findNewest(QByteArrayView(*bytes).first(last), newer);
    m_offset = *m_offset + last;
    take(std::move(newer), file);
    return true;
}

} // namespace nubble
