#include "Platform/InstanceLock.h"

#include <QFile>

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

// Opened anew each time, for a predecessor may have removed it. Without O_NONBLOCK, a FIFO would wait.
bool InstanceLock::isHeldElsewhere()
{
    constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const int file = ::open(m_path.constData(), flags, S_IRUSR | S_IWUSR);
    struct stat info { };
    const bool isFit = file >= 0 && ::fstat(file, &info) == 0 && S_ISREG(info.st_mode);
    if (isFit && ::flock(file, LOCK_EX | LOCK_NB) == 0) {
        m_descriptor = file;
        return false;
    }
    const bool isElsewhere = isFit && errno == EWOULDBLOCK;
    if (!isElsewhere)
        qCDebug(logPlatform) << m_path << "cannot be locked: starting without it";
    if (file >= 0)
        ::close(file);
    return isElsewhere;
}

} // namespace nubble
