#include "Meeting/OtherRecorders.h"

#include "Shell/Command.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr auto capture = "ffmpeg"_L1; // what a recorder has its sound from

} // namespace

std::optional<QList<RecorderProcess>> findRecorders(
    const QString &pgrep, const ProcessTable &processes, std::chrono::milliseconds patience,
    const std::stop_token &stop)
{
    const Command command{pgrep, {u"-f"_s, uR"(quib-live.mjs|\.quib-live/sessions/)"_s}};
    const CommandEnd end = runCommand(command, {}, {.output = 64 * 1024, .time = patience}, stop);
    if (end.kind == CommandEnd::Kind::NotStarted || end.cause != CommandEnd::Cause::Itself)
        return std::nullopt;
    QList<RecorderProcess> found;
    for (const QByteArray &each : end.output.split('\n')) {
        bool isNumber = false;
        const pid_t pid = each.toInt(&isNumber);
        if (isNumber && processes.canSignal(pid))
            found.append({pid, processes.find(pid)});
    }
    return found;
}

QList<RecorderProcess> othersAmong(
    const QList<RecorderProcess> &found, pid_t self, std::optional<pid_t> started)
{
    QList<RecorderProcess> others;
    for (const RecorderProcess &each : found) {
        if (!each.info || each.pid == self || each.pid == started)
            continue;
        // An unknown parent and no recorder of ours count as the same: such a one is left out.
        const bool belongsToOurs = each.info->parent == started;
        if (!belongsToOurs && (each.info->name == "node"_L1 || each.info->name == capture))
            others.append(each);
    }
    return others;
}

bool isOrphanRecorder(const ProcessInfo &info)
{
    return info.name == capture && info.isOrphan;
}

} // namespace nubble
