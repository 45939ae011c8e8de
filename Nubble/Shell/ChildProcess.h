#pragma once

#include <QObject>

#include <csignal>
#include <memory>
#include <sys/types.h>

#include "Platform/Outcome.h"
#include "Shell/Command.h"

namespace nubble {

// A running outside command: the one way in which the program runs any. It leads a process group of its own
// and inherits nothing of us but what Command says: no descriptor, no blocked or ignored signal. Bytes are
// given as they are; a chunk may end inside a character. Nothing here blocks. One thread, the one that made
// it: the main thread, since runCommand serves the others.
class ChildProcess : public QObject {
    Q_OBJECT

public:
    // None: its input is empty, and its output goes to the null device, where it may write even after our
    // end.
    enum class Delivery { Chunks, Whole, None };
    // Whether the child, and what it has started, ends with this object or the program (even with one that
    // crashes), or goes on alone. Such a one has no input, and what it writes when nobody is left to read it
    // goes nowhere; only after a megabyte of it the child has to wait.
    enum class Lifetime { Ours, ItsOwn };

    explicit ChildProcess(
        Command command, CommandLimits limits = {}, Delivery delivery = Delivery::Chunks,
        Lifetime lifetime = Lifetime::Ours, QObject *parent = nullptr);
    ~ChildProcess() override; // ends it as end() does, without waiting for it; see Lifetime

    void start(); // once
    // The same, and waits until it runs, which takes milliseconds; or says why it does not.
    [[nodiscard]] Outcome startNow();

    // Once started. Kept until the child reads it, however much it is; dropped when it does not want it any
    // more.
    void write(const QByteArray &bytes);
    void closeInput(); // after what is pending

    // Asks the whole group with `signal` to end, and kills it after the grace.
    void end(int signal = SIGTERM);
    bool signal(int number) const; // to the child alone; false when it has ended

    [[nodiscard]] bool isRunning() const { return m_running; }
    [[nodiscard]] pid_t pid() const; // 0 when it does not run

Q_SIGNALS:
    // At most what a pipe holds. The next chunk is read when this one has been dealt with, so a slow receiver
    // slows the child down; it must not run an event loop of its own.
    void output(const QByteArray &chunk);

    // The child reads no more of what is written to it, though it may go on; `why` is for people.
    void inputRefused(const QString &why);

    // Once, after the last output, never from within start(). A process that the child has left behind does
    // not hold it up: it is killed first, unless the child's lifetime is its own.
    void ended(const nubble::CommandEnd &end);

private:
    friend CommandEnd runCommand(
        const Command &command, const QByteArray &input, CommandLimits limits, const std::stop_token &stop);
    class Handle;

    void readOutput();
    void readErrors();
    void conclude(CommandEnd::Kind kind, int code);
    void endBecause(CommandEnd::Cause cause, int signal);

    const CommandLimits m_limits;
    const Delivery m_delivery;
    bool m_running = false;
    qint64 m_outputSize = 0;
    CommandEnd m_end;
    std::unique_ptr<Handle> m_handle;
};

} // namespace nubble
