#include "Shell/ChildProcess.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QTimer>

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace nubble {

namespace {

// Between fork and exec, so only what is allowed in a signal handler, here and in the next one. A pipe whose
// writer holds it open for reading, too, does not break when we end.
void keepReader(const char *pathOfDescriptor, int descriptor)
{
    constexpr int mostForAnybody = 1 << 20; // bytes; what the kernel allows without privileges
    const int pipe = ::open(pathOfDescriptor, O_RDWR | O_CLOEXEC);
    if (pipe < 0)
        return;
    ::fcntl(pipe, F_SETPIPE_SZ, mostForAnybody);
    ::dup2(pipe, descriptor);
    ::close(pipe);
}

void leaveNothingOfUs(std::optional<int> niceness, bool endsWithUs)
{
    ::setpgid(0, 0);
    ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC); // what others have left open for us, such as a lock
    for (int each = 1; each < NSIG; ++each)
        ::signal(each, SIG_DFL);
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    if (niceness)
        ::setpriority(PRIO_PROCESS, 0, *niceness);
    if (endsWithUs) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM); // sent when the thread ends that has started it
    } else {
        keepReader("/proc/self/fd/1", STDOUT_FILENO);
        keepReader("/proc/self/fd/2", STDERR_FILENO);
    }
}

} // namespace

// The process itself, which has to be waited for even when nobody asks for it any more.
class ChildProcess::Handle : public QProcess {
public:
    explicit Handle(Lifetime lifetime) : m_lifetime(lifetime)
    {
        connect(this, &QProcess::finished, this, [this] { forget(); });
    }

    ~Handle() override
    {
        forget();
        setProcessState(QProcess::NotRunning); // else the base class waits for it, for up to half a minute
    }

    // With all signals blocked: none that is meant for the child may run a handler of ours in it.
    void startGroup()
    {
        sigset_t all;
        sigset_t before;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &before);
        start();
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        m_pid = static_cast<pid_t>(processId());
        if (m_pid > 0)
            ::setpgid(m_pid, m_pid); // the child does so as well: whoever comes first
    }

    [[nodiscard]] pid_t pid() const { return state() == QProcess::NotRunning ? 0 : m_pid; }

    void end(int signal, std::chrono::milliseconds grace)
    {
        signalGroup(grace > 0ms ? signal : SIGKILL);
        if (grace > 0ms)
            QTimer::singleShot(grace, this, [this] { signalGroup(SIGKILL); });
    }

    // Goes with the program at the latest. What it still writes is read and dropped.
    void abandon(std::chrono::milliseconds grace)
    {
        QCoreApplication *application = QCoreApplication::instance();
        if (!application || application->thread() != thread()) {
            delete this;
            return;
        }
        setParent(application);
        connect(this, &QProcess::finished, this, &QObject::deleteLater);
        closeReadChannel(QProcess::StandardOutput);
        closeReadChannel(QProcess::StandardError);
        closeWriteChannel();
        if (m_lifetime == Lifetime::Ours)
            end(SIGTERM, grace);
    }

private:
    void signalGroup(int number) const
    {
        if (m_pid > 0)
            ::kill(-m_pid, number);
    }

    void forget()
    {
        if (m_lifetime == Lifetime::Ours)
            signalGroup(SIGKILL);
        m_pid = 0;
    }

    const Lifetime m_lifetime;
    pid_t m_pid = 0;
};

ChildProcess::ChildProcess(
    Command command, CommandLimits limits, Delivery delivery, Lifetime lifetime, QObject *parent)
    : QObject(parent), m_limits(limits), m_delivery(delivery), m_handle(std::make_unique<Handle>(lifetime))
{
    m_handle->setProgram(command.program);
    m_handle->setArguments(command.arguments);
    m_handle->setWorkingDirectory(command.folder);
    if (command.environment)
        m_handle->setProcessEnvironment(*command.environment);
    if (command.joinsErrors)
        m_handle->setProcessChannelMode(QProcess::MergedChannels);
    else if (limits.errors == 0)
        m_handle->setStandardErrorFile(QProcess::nullDevice());
    if (lifetime == Lifetime::ItsOwn)
        m_handle->setStandardInputFile(QProcess::nullDevice());
    if (delivery == Delivery::None)
        m_handle->setStandardOutputFile(QProcess::nullDevice());
    m_handle->setChildProcessModifier(
        [niceness = command.niceness, lifetime] { leaveNothingOfUs(niceness, lifetime == Lifetime::Ours); });
    connect(m_handle.get(), &QProcess::readyReadStandardOutput, this, &ChildProcess::readOutput);
    connect(m_handle.get(), &QProcess::readyReadStandardError, this, &ChildProcess::readErrors);
    connect(m_handle.get(), &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        using enum CommandEnd::Kind;
        conclude(status == QProcess::NormalExit ? Exited : Signalled, code);
    });
    connect(m_handle.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            m_end.whyNotStarted = m_handle->errorString();
            conclude(CommandEnd::Kind::NotStarted, 0);
        } else if (error == QProcess::WriteError) {
            Q_EMIT inputRefused(m_handle->errorString());
        }
    });
}

ChildProcess::~ChildProcess()
{
    m_handle->disconnect(this);
    if (m_running)
        m_handle.release()->abandon(m_limits.grace);
}

void ChildProcess::start()
{
    m_running = true;
    if (QDir::isAbsolutePath(m_handle->program()))
        m_handle->startGroup();
    else
        conclude(CommandEnd::Kind::NotStarted, 0);
    if (m_limits.time)
        QTimer::singleShot(
            *m_limits.time, this, [this] { endBecause(CommandEnd::Cause::TimeLimit, SIGTERM); });
}

Outcome ChildProcess::startNow()
{
    constexpr int longestForAnyDisk = 500; // milliseconds; past that it is as after start()
    start();
    m_handle->waitForStarted(longestForAnyDisk);
    if (m_running)
        return Outcome::done();
    return Outcome::failed(m_end.whyNotStarted.isEmpty() ? m_handle->program() : m_end.whyNotStarted);
}

void ChildProcess::write(const QByteArray &bytes)
{
    if (m_running)
        m_handle->write(bytes);
}

void ChildProcess::closeInput()
{
    m_handle->closeWriteChannel();
}

void ChildProcess::end(int signal)
{
    endBecause(CommandEnd::Cause::Request, signal);
}

bool ChildProcess::signal(int number) const
{
    return pid() > 0 && ::kill(pid(), number) == 0;
}

pid_t ChildProcess::pid() const
{
    return m_handle->pid();
}

void ChildProcess::endBecause(CommandEnd::Cause cause, int signal)
{
    if (!m_running)
        return;
    if (m_end.cause == CommandEnd::Cause::Itself)
        m_end.cause = cause;
    m_handle->end(signal, m_limits.grace);
}

void ChildProcess::readOutput()
{
    QByteArray chunk = m_handle->readAllStandardOutput();
    const qint64 room = m_limits.output - m_outputSize;
    if (chunk.size() > room) {
        chunk.truncate(room);
        m_handle->closeReadChannel(QProcess::StandardOutput);
        endBecause(CommandEnd::Cause::OutputLimit, SIGTERM);
    }
    m_outputSize += chunk.size();
    if (m_delivery == Delivery::Whole)
        m_end.output += chunk;
    else if (!chunk.isEmpty())
        Q_EMIT output(chunk); // whose receiver may delete us
}

void ChildProcess::readErrors()
{
    m_end.errors += m_handle->readAllStandardError();
    if (m_end.errors.size() > m_limits.errors)
        m_end.errors = m_end.errors.last(m_limits.errors);
}

void ChildProcess::conclude(CommandEnd::Kind kind, int code)
{
    m_running = false;
    m_end.kind = kind;
    m_end.code = code;
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT ended(m_end); }, Qt::QueuedConnection);
}

CommandEnd runCommand(
    const Command &command, const QByteArray &input, CommandLimits limits, const std::stop_token &stop)
{
    const QDeadlineTimer deadline = limits.time ? QDeadlineTimer(*limits.time) : QDeadlineTimer::Forever;
    limits.time.reset();
    limits.grace = 0ms;
    ChildProcess process(command, limits, ChildProcess::Delivery::Whole);
    process.start();
    process.write(input);
    process.closeInput();
    while (process.isRunning()) {
        constexpr int soonEnoughToNoticeStop = 50; // milliseconds
        process.m_handle->waitForFinished(soonEnoughToNoticeStop);
        if (stop.stop_requested())
            process.end();
        else if (deadline.hasExpired())
            process.endBecause(CommandEnd::Cause::TimeLimit, SIGKILL);
    }
    return process.m_end;
}

} // namespace nubble
