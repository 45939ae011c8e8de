#include "Platform/Home.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QString homeInPasswordDatabase()
{
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd *found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_dir)
        return QFile::decodeName(found->pw_dir);
    return QDir::homePath();
}

} // namespace

Home::Home(QString folder, QString configFolder)
    : m_path(std::move(folder)), m_configFolder(std::move(configFolder)), m_claudeFolders{file(u".claude"_s)}
{
}

Home::Home(const QString &folder) : Home(QDir::cleanPath(folder), QDir::cleanPath(folder) + u"/.config") { }

Home Home::ofUser()
{
    const QString home = QDir::cleanPath(homeInPasswordDatabase());
    const QString xdg = qEnvironmentVariable("XDG_CONFIG_HOME");
    Home user(home, QDir::isAbsolutePath(xdg) ? QDir::cleanPath(xdg) : home + u"/.config");
    if (const QString claude = qEnvironmentVariable("CLAUDE_CONFIG_DIR"); QDir::isAbsolutePath(claude))
        user.m_claudeFolders.append(QDir::cleanPath(claude));
    return user;
}

QString Home::file(const QString &relativePath) const
{
    return m_path + u'/' + relativePath;
}

QString Home::applicationSupport(const QString &name) const
{
    const QString library = file(u"Library/Application Support/" + name);
    return QFileInfo(library).isDir() ? library : m_configFolder + u'/' + name;
}

} // namespace nubble
