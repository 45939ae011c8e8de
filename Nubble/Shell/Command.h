#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QStringList>

#include <chrono>
#include <limits>
#include <optional>
#include <stop_token>

namespace nubble {

// An outside command: what to run, and in which surroundings. Never a shell.
struct Command {
    QString program; // absolute path
    QStringList arguments{};
    std::optional<QProcessEnvironment> environment{}; // absent: ours
    QString folder{};                                 // to work in; empty: ours
    std::optional<int> niceness{};                    // 0 to 19; absent, or if less: the starting thread's
    bool joinsErrors = false;                         // standard error comes with standard output
};

// How far a command may go before it is ended.
struct CommandLimits {
    qint64 output = std::numeric_limits<qint64>::max(); // bytes of standard output
    qint64 errors = 0; // bytes of standard error that are kept, the last ones; 0: it goes to the null device
    std::optional<std::chrono::milliseconds> time{};
    std::chrono::milliseconds grace{2000}; // from being asked to end to being killed; 0: killed at once
};

// How a command ended, and what is left of it.
struct CommandEnd {
    enum class Kind { NotStarted, Exited, Signalled };
    enum class Cause { Itself, OutputLimit, TimeLimit, Request };

    Kind kind = Kind::NotStarted;
    int code = 0;                // exit status, or number of the signal
    Cause cause = Cause::Itself; // whether we ended it, and why
    QByteArray output{};         // when it was wanted whole; up to the limit
    QByteArray errors{};
    QString whyNotStarted{}; // for people
};

// Runs a command on `input` to its end, for worker threads, and for commands so short that the main thread
// can wait. Kills it, and all that it has started, at a limit or on `stop`, without a grace; kills what it
// leaves behind, too. Needs no event loop; any thread.
[[nodiscard]] CommandEnd runCommand(
    const Command &command, const QByteArray &input, CommandLimits limits, const std::stop_token &stop = {});

} // namespace nubble
