#include "Platform/InstanceLock.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Logging.h"

namespace nubble {

InstanceLock::InstanceLock(const QString &path) : m_path(QFile::encodeName(path)) { }

InstanceLock::~InstanceLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool InstanceLock::isHeldElsewhere(std::chrono::milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    State state = tryOnce();
    while (state == State::Elsewhere && !deadline.hasExpired()) {
        QThread::msleep(50);
        state = tryOnce();
    }
    if (state == State::Free)
        qCDebug(logPlatform) << m_path << "cannot be locked: starting without it";
    return state == State::Elsewhere;
}

// Opened anew each time, for a predecessor may have removed it. Without O_NONBLOCK, a FIFO would wait.
InstanceLock::State InstanceLock::tryOnce()
{
    constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const int file = ::open(m_path.constData(), flags, S_IRUSR | S_IWUSR);
    if (file < 0)
        return State::Free;
    struct stat info { };
    State state = State::Free;
    if (::fstat(file, &info) == 0 && S_ISREG(info.st_mode)) {
        if (::flock(file, LOCK_EX | LOCK_NB) == 0)
            state = State::Ours;
        else if (errno == EWOULDBLOCK)
            state = State::Elsewhere;
    }
    if (state == State::Ours)
        m_descriptor = file;
    else
        ::close(file);
    return state;
}

} // namespace nubble
