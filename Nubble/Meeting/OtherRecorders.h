#pragma once

#include <QList>

#include <chrono>
#include <optional>
#include <stop_token>

#include "Platform/ProcessTable.h"

namespace nubble {

// A process whose command line is a recorder's.
struct RecorderProcess {
    pid_t pid = 0;
    std::optional<ProcessInfo> info{}; // absent when it is not to be found

    bool operator==(const RecorderProcess &) const = default;
};

// Those that `pgrep` finds and this user can signal, in its order; none when it gives no answer for as long
// as that. Any thread.
[[nodiscard]] std::optional<QList<RecorderProcess>> findRecorders(
    const QString &pgrep, const ProcessTable &processes, std::chrono::milliseconds patience,
    const std::stop_token &stop = {});

// Those of them that neither are nor belong to the program `self` or the recorder that it has started. Pure.
[[nodiscard]] QList<RecorderProcess> othersAmong(
    const QList<RecorderProcess> &found, pid_t self, std::optional<pid_t> started);

// Whether it is what a recorder that has gone has left behind.
[[nodiscard]] bool isOrphanRecorder(const ProcessInfo &info);

} // namespace nubble
