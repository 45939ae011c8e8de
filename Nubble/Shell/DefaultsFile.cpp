#include "Shell/DefaultsFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/NewFile.h"
#include "Platform/RegularFile.h"

namespace nubble {

namespace {

constexpr qint64 enough = 1'000'000;

int openFolder(const QString &path)
{
    return ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

std::optional<DefaultsFile::Content> contentOf(const char *name, int folder)
{
    struct stat info { };
    if (::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? std::optional(DefaultsFile::Content()) : std::nullopt;
    const auto file = RegularFile::open(name, folder, RegularFile::Links::Refused);
    auto bytes = file && file->size() <= enough ? file->read(0, enough + 1) : std::nullopt;
    if (!bytes || bytes->size() > enough)
        return std::nullopt;
    constexpr mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;
    return DefaultsFile::Content{.bytes = *std::move(bytes), .mode = info.st_mode & permissions};
}

} // namespace

DefaultsFile::DefaultsFile(const QString &path)
{
    const QFileInfo place(path);
    const QString target = place.isSymLink() ? place.canonicalFilePath() : QString();
    const QFileInfo file(target.isEmpty() ? path : target);
    m_folder = file.path();
    m_name = QFile::encodeName(file.fileName());
}

std::optional<DefaultsFile::Content> DefaultsFile::read() const
{
    const int folder = openFolder(m_folder);
    if (folder < 0)
        return errno == ENOENT ? std::optional(Content()) : std::nullopt;
    auto content = contentOf(m_name.constData(), folder);
    ::close(folder);
    return content;
}

bool DefaultsFile::replace(const Content &content) const
{
    constexpr mode_t toWrite = S_IWUSR;
    if (content.bytes.size() > enough || (content.mode & toWrite) == 0 || !QDir().mkpath(m_folder))
        return false;
    const int folder = openFolder(m_folder);
    if (folder < 0)
        return false;
    const int error = replaceFile(folder, m_name, content.bytes, content.mode);
    ::close(folder);
    return error == 0;
}

} // namespace nubble
