#include "Platform/RegularFile.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubble {

FileTime fileTimeOf(const timespec &time)
{
    constexpr qint64 lastSecond = 9'000'000'000;
    const std::chrono::seconds seconds(std::clamp<qint64>(time.tv_sec, -lastSecond, lastSecond));
    return FileTime(seconds + std::chrono::nanoseconds(time.tv_nsec));
}

FileState fileStateOf(const struct stat &info)
{
    return {info.st_ino, info.st_size, fileTimeOf(info.st_mtim), fileTimeOf(info.st_ctim)};
}

std::optional<FileState> fileStateOf(const QByteArray &path)
{
    struct stat info { };
    return ::stat(path.constData(), &info) == 0 ? std::optional(fileStateOf(info)) : std::nullopt;
}

RegularFile::RegularFile(int descriptor, qint64 size, FileTime modified)
    : m_descriptor(descriptor), m_size(size), m_modified(modified)
{
}

RegularFile::~RegularFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

std::optional<RegularFile> RegularFile::open(const char *name, int folder, Links links)
{
    // Without O_NONBLOCK, opening a FIFO waits for its writer.
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const int descriptor = ::openat(folder, name, links == Links::Refused ? flags | O_NOFOLLOW : flags);
    if (descriptor < 0)
        return std::nullopt;
    struct stat info { };
    if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(descriptor);
        return std::nullopt;
    }
    return RegularFile(descriptor, info.st_size, fileTimeOf(info.st_mtim));
}

std::optional<RegularFile> RegularFile::open(const QString &path)
{
    return open(QFile::encodeName(path).constData(), AT_FDCWD);
}

std::optional<FileState> RegularFile::stateOf(const char *path)
{
    return stateOf(path, AT_FDCWD);
}

std::optional<FileState> RegularFile::stateOf(const char *name, int folder)
{
    struct stat info { };
    if (::fstatat(folder, name, &info, 0) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    return fileStateOf(info);
}

std::optional<QByteArray> RegularFile::read(qint64 offset, qint64 length) const
{
    QByteArray bytes(length, Qt::Uninitialized);
    qint64 got = 0;
    while (got < length) {
        const ssize_t count =
            ::pread(m_descriptor, bytes.data() + got, static_cast<size_t>(length - got), offset + got);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        got += count;
    }
    bytes.truncate(got);
    return bytes;
}

} // namespace nubble
