#include "Shell/Tools.h"

#include <QFileInfo>
#include <QStringList>

#include "Platform/Home.h"

using namespace Qt::StringLiterals;

namespace nubble::Tools {

std::optional<QString> inheritedPath()
{
    return qEnvironmentVariableIsSet("PATH") ? std::optional(qEnvironmentVariable("PATH")) : std::nullopt;
}

bool isExecutableFile(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

std::optional<QString> find(const QString &name, const Home &home, const std::optional<QString> &path)
{
    // ~/.claude/local is where Claude Code's local installer puts `claude`; it is in no PATH.
    QStringList folders{
        home.file(u".local/bin"_s), u"/opt/homebrew/bin"_s, u"/usr/local/bin"_s, u"/usr/bin"_s,
        home.file(u".claude/local"_s)};
    folders += path.value_or(QString()).split(u':', Qt::SkipEmptyParts);
    for (const QString &folder : std::as_const(folders)) {
        const QString candidate = folder + u'/' + name;
        if (isExecutableFile(candidate))
            return candidate;
    }
    return std::nullopt;
}

QString searchPath(const Home &home, const std::optional<QString> &path)
{
    return home.path() + u"/.local/bin:/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin:"
        + path.value_or(QString());
}

} // namespace nubble::Tools
