#include "Platform/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/NewFile.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t ofOthers = S_IRWXG | S_IRWXO;

// Follows links: people keep such folders elsewhere. What others could rename in it is closed to them.
int openParent(const char *path)
{
    if (::mkdir(path, S_IRWXU) != 0 && errno != EEXIST)
        return -1;
    const int parent = ::open(path, folderFlags);
    struct stat info { };
    if (parent < 0 || ::fstat(parent, &info) != 0)
        return parent;
    constexpr mode_t writtenByOthers = S_IWGRP | S_IWOTH;
    constexpr mode_t kind = S_IFMT;
    if (info.st_uid == ::geteuid()
        && ((info.st_mode & writtenByOthers) == 0
            || ::fchmod(parent, info.st_mode & ~kind & ~writtenByOthers) == 0))
        return parent;
    ::close(parent);
    errno = EPERM;
    return -1;
}

} // namespace

PrivateFolder::~PrivateFolder()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

Outcome PrivateFolder::open()
{
    return openBelow(AT_FDCWD, QFile::encodeName(m_path).constData());
}

Outcome PrivateFolder::make()
{
    const QFileInfo place(m_path);
    const QByteArray name = QFile::encodeName(place.fileName());
    const int parent = openParent(QFile::encodeName(place.path()).constData());
    if (parent < 0)
        return failure(qt_error_string(errno));
    const bool isThere = ::mkdirat(parent, name.constData(), S_IRWXU) == 0 || errno == EEXIST;
    Outcome outcome = isThere ? openBelow(parent, name.constData()) : failure(qt_error_string(errno));
    ::close(parent);
    return outcome;
}

Outcome PrivateFolder::openBelow(int parent, const char *name)
{
    const int folder = ::openat(parent, name, folderFlags | O_NOFOLLOW);
    struct stat info { };
    if (folder < 0 || ::fstat(folder, &info) != 0)
        return failure(qt_error_string(errno));
    if (info.st_uid != ::geteuid() || (info.st_mode & ofOthers) != 0) {
        ::close(folder);
        return failure(u"others have access to it"_s);
    }
    m_descriptor = folder;
    return Outcome::done();
}

Outcome PrivateFolder::create(const QByteArray &name, const QByteArray &bytes, mode_t mode) const
{
    const int error = createFile(m_descriptor, name, bytes, mode);
    return error == 0 ? Outcome::done() : failure(qt_error_string(error));
}

Outcome PrivateFolder::failure(const QString &why) const
{
    return Outcome::failed(u"the folder %1 cannot be used: %2"_s.arg(m_path, why));
}

} // namespace nubble
