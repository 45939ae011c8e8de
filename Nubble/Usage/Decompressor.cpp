#include "Usage/Decompressor.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace nubble {

namespace {

class Descriptor {
public:
    explicit Descriptor(int value = -1) : m_value(value) { }
    Descriptor(Descriptor &&other) noexcept : m_value(std::exchange(other.m_value, -1)) { }
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor() { close(); }

    [[nodiscard]] int get() const { return m_value; }
    void close()
    {
        if (m_value >= 0)
            ::close(std::exchange(m_value, -1));
    }

private:
    int m_value;
};

// The bytes as a file without a name, to be the child's input: a child that reads none of it, or writes
// before it reads, holds nobody up, and there is no broken pipe to be killed by.
Descriptor inputOf(QByteArrayView bytes)
{
    Descriptor file(::memfd_create("compressed", MFD_CLOEXEC));
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(file.get(), bytes.data(), static_cast<size_t>(bytes.size()));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return Descriptor();
        bytes = bytes.sliced(written);
    }
    ::lseek(file.get(), 0, SEEK_SET);
    return file;
}

// In a process group of its own, so that it can be ended together with whatever it starts.
std::optional<pid_t> spawn(const QByteArray &executable, int input, int output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);

    QByteArray name = executable;
    std::array<char, 4> option{"-dc"};
    const std::array<char *, 3> arguments{name.data(), option.data(), nullptr};
    pid_t pid = 0;
    const int error =
        ::posix_spawn(&pid, executable.constData(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? std::optional(pid) : std::nullopt;
}

// How long to wait for one event: short enough to notice `stop` in time.
int waitingTime(const QDeadlineTimer &deadline)
{
    return static_cast<int>(std::min<qint64>(deadline.remainingTime(), 50));
}

std::optional<QByteArray> readToEnd(
    int descriptor, qint64 limit, const QDeadlineTimer &deadline, const std::stop_token &stop)
{
    QByteArray output;
    std::array<char, 65536> chunk;
    while (!stop.stop_requested() && !deadline.hasExpired() && output.size() <= limit) {
        pollfd readable{descriptor, POLLIN, 0};
        if (::poll(&readable, 1, waitingTime(deadline)) <= 0)
            continue;
        const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
        if (count == 0)
            return output;
        if (count > 0)
            output.append(chunk.data(), count);
        else if (errno != EINTR)
            break;
    }
    return std::nullopt;
}

void awaitExit(pid_t pid, const QDeadlineTimer &deadline, const std::stop_token &stop)
{
    while (!stop.stop_requested() && !deadline.hasExpired()) {
        if (::waitpid(pid, nullptr, WNOHANG) != 0)
            return;
        QThread::msleep(1);
    }
    ::kill(-pid, SIGKILL);
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) { }
}

} // namespace

std::optional<QByteArray> decompress(
    const QString &zstd, QByteArrayView compressed, const DecompressionLimits &limits,
    const std::stop_token &stop)
{
    const QDeadlineTimer deadline(limits.time);
    const Descriptor input = inputOf(compressed);
    std::array<int, 2> ends{-1, -1};
    if (input.get() < 0 || ::pipe2(ends.data(), O_CLOEXEC) != 0)
        return std::nullopt;
    const Descriptor output(ends[0]);
    Descriptor childsOutput(ends[1]);
    const auto pid = spawn(QFile::encodeName(zstd), input.get(), childsOutput.get());
    if (!pid)
        return std::nullopt;
    childsOutput.close();
    const auto bytes = readToEnd(output.get(), limits.output, deadline, stop);
    awaitExit(*pid, bytes ? deadline : QDeadlineTimer(0), stop);
    return bytes && !bytes->isEmpty() ? bytes : std::nullopt;
}

} // namespace nubble
