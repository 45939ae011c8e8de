#include "Meeting/MeetingLog.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubble {

namespace {

bool isOwnLink(const char *path)
{
    struct stat info { };
    return ::lstat(path, &info) == 0 && S_ISLNK(info.st_mode) && info.st_uid == ::geteuid();
}

int openAtEnd(const char *path)
{
    // O_NONBLOCK: nobody may read a FIFO that stands there.
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    constexpr mode_t forUser = S_IRUSR | S_IWUSR;
    const int descriptor = ::open(path, flags | O_NOFOLLOW, forUser);
    return descriptor < 0 && errno == ELOOP && isOwnLink(path) ? ::open(path, flags, forUser) : descriptor;
}

void writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), static_cast<size_t>(bytes.size()));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        bytes = bytes.sliced(written);
    }
}

} // namespace

void appendToLog(const QString &path, const QByteArray &bytes)
{
    const int descriptor = openAtEnd(QFile::encodeName(path).constData());
    if (descriptor < 0)
        return;
    struct stat info { };
    if (::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode))
        writeAll(descriptor, bytes);
    ::close(descriptor);
}

} // namespace nubble
