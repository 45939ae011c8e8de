#include "Platform/Linux/LinuxProcessTable.h"

#include <QFile>
#include <QList>

#include <array>
#include <climits>
#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>

#include "Platform/RegularFile.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr pid_t firstProcess = 1;

struct StatLine {
    QByteArray threadName;
    pid_t parent;
    bool hasTerminal;
    quint64 birth; // clock ticks after the machine's start
};

// "PID (NAME) STATE PARENT …": the name may have spaces and parentheses of its own. None of a process that
// has ended, and only waits for its parent to take note.
std::optional<StatLine> statLineOf(pid_t pid)
{
    constexpr qint64 longest = 4096;
    constexpr qsizetype stateField = 0;
    constexpr qsizetype parentField = 1;
    constexpr qsizetype terminalField = 4;
    constexpr qsizetype birthField = 19;
    const auto file = RegularFile::open(u"/proc/%1/stat"_s.arg(pid));
    const QByteArray line = file ? file->read(0, longest).value_or(QByteArray()) : QByteArray();
    const qsizetype nameBegin = line.indexOf('(') + 1;
    const qsizetype nameEnd = line.lastIndexOf(')');
    if (nameBegin == 0 || nameEnd < nameBegin)
        return std::nullopt;
    const QList<QByteArray> fields = line.sliced(nameEnd + 1).trimmed().split(' ');
    if (fields.size() <= birthField || fields.at(stateField) == "Z" || fields.at(stateField) == "X")
        return std::nullopt;
    return StatLine{
        line.sliced(nameBegin, nameEnd - nameBegin), fields.at(parentField).toInt(),
        fields.at(terminalField) != "0", fields.at(birthField).toULongLong()};
}

// Empty where it cannot be read.
QByteArray linkOf(const QByteArray &process, const QByteArray &name)
{
    std::array<char, PATH_MAX> path{};
    const QByteArray link = "/proc/" + process + '/' + name;
    const ssize_t size = ::readlink(link.constData(), path.data(), path.size());
    return {path.data(), std::max<ssize_t>(size, 0)};
}

std::optional<QByteArray> executableNameOf(pid_t pid)
{
    QByteArray target = linkOf(QByteArray::number(pid), "exe");
    if (target.isEmpty())
        return std::nullopt;
    if (constexpr QByteArrayView mark = " (deleted)"; target.endsWith(mark))
        target.chop(mark.size()); // an update has replaced the file
    return target.sliced(target.lastIndexOf('/') + 1);
}

bool isContained(pid_t pid)
{
    const QByteArray space = linkOf(QByteArray::number(pid), "ns/pid");
    return !space.isEmpty() && space != linkOf("self", "ns/pid");
}

// The user's service manager takes the orphans of the session, where there is one.
bool adoptsOrphans(pid_t parent)
{
    if (parent == firstProcess)
        return true;
    const auto line = statLineOf(parent);
    return line && line->threadName == "systemd" && line->parent == firstProcess;
}

} // namespace

bool LinuxProcessTable::canSignal(pid_t pid) const
{
    // 0 and negative ids would address process groups, and succeed.
    return pid > 0 && ::kill(pid, 0) == 0;
}

std::optional<ProcessInfo> LinuxProcessTable::find(pid_t pid) const
{
    if (pid < firstProcess)
        return std::nullopt;
    const std::optional<StatLine> line = statLineOf(pid);
    const std::optional<QByteArray> executable = executableNameOf(pid);
    if (!line && !executable)
        return std::nullopt;
    ProcessInfo info{.name = QString::fromUtf8(executable ? *executable : line->threadName)};
    if (line) {
        info.parent = line->parent;
        info.isOrphan = adoptsOrphans(line->parent);
        info.birth = line->birth;
        info.hasTerminal = line->hasTerminal;
        info.isContained = isContained(pid);
    }
    return info;
}

QByteArray LinuxProcessTable::environment(pid_t pid) const
{
    constexpr qint64 most = 1 << 20;
    const auto file = pid < firstProcess ? std::nullopt : RegularFile::open(u"/proc/%1/environ"_s.arg(pid));
    return file ? file->read(0, most).value_or(QByteArray()) : QByteArray();
}

void LinuxProcessTable::signal(pid_t pid, quint64 birth, int number) const
{
    // Opened first: from then on the id is not given to another process unnoticed.
    const int process = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
    if (process < 0)
        return;
    if (const auto line = statLineOf(pid); line && line->birth == birth)
        ::syscall(SYS_pidfd_send_signal, process, number, nullptr, 0);
    ::close(process);
}

} // namespace nubble
