#include "Platform/NewFile.h"

#include <QRandomGenerator>
#include <QStringBuilder>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubble {

namespace {

bool writeAll(int file, const QByteArray &bytes)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            ::write(file, bytes.constData() + written, static_cast<size_t>(bytes.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        written += count;
    }
    return true;
}

enum class Durability { Later, Now };

int create(int folder, const QByteArray &name, const QByteArray &bytes, mode_t mode, Durability durability)
{
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const int file = ::openat(folder, name.constData(), flags, mode);
    if (file < 0)
        return errno;
    const bool isWritten = writeAll(file, bytes) && ::fchmod(file, mode) == 0
        && (durability == Durability::Later || ::fdatasync(file) == 0 || errno == EINVAL);
    const int error = isWritten ? 0 : errno;
    if (::close(file) == 0 && isWritten) // some file systems tell only then
        return 0;
    const int why = error != 0 ? error : errno;
    ::unlinkat(folder, name.constData(), 0);
    return why;
}

} // namespace

int createFile(int folder, const QByteArray &name, const QByteArray &bytes, mode_t mode)
{
    return create(folder, name, bytes, mode, Durability::Later);
}

int replaceFile(int folder, const QByteArray &name, const QByteArray &bytes, mode_t mode)
{
    const QByteArray beside =
        '.' + name + '.' + QByteArray::number(QRandomGenerator::system()->generate64(), 36);
    if (const int error = create(folder, beside, bytes, mode, Durability::Now); error != 0)
        return error;
    if (::renameat(folder, beside.constData(), folder, name.constData()) == 0)
        return 0;
    const int error = errno;
    ::unlinkat(folder, beside.constData(), 0);
    return error;
}

} // namespace nubble
