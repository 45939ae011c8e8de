#include "Search/ResumeText.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <array>
#include <pwd.h>
#include <unistd.h>

#include "Shell/Tools.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// More than an argument of a program can hold.
constexpr qsizetype longestCommand = 128 * 1024;
// Of a script's first line, in bytes; older kernels cut off the rest. The " -l" is beside it.
constexpr qsizetype longestShell = 120;

// Those that run a command line as zsh does. Any other login shell is one of another language, or, such as
// nologin, none at all.
bool isUnderstanding(const QString &shell)
{
    static const QStringList names{u"zsh"_s,   u"bash"_s, u"dash"_s, u"sh"_s,   u"ash"_s,  u"ksh"_s,
                                   u"ksh93"_s, u"mksh"_s, u"yash"_s, u"fish"_s, u"tcsh"_s, u"csh"_s};
    return names.contains(QFileInfo(shell).fileName());
}

// As the first line of a script names it.
bool isNameable(const QString &shell)
{
    const auto parts = [](QChar each) { return each.isSpace() || each.category() == QChar::Other_Control; };
    return shell.startsWith(u'/') && QFile::encodeName(shell).size() <= longestShell
        && std::none_of(shell.begin(), shell.end(), parts);
}

} // namespace

QString loginShell()
{
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd *found = nullptr;
    const bool isThere =
        getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_shell;
    return isThere ? QFile::decodeName(found->pw_shell) : QString();
}

QString resumeShell(const QString &zsh, const QString &login)
{
    for (const QString &each : {zsh, login})
        if (isNameable(each) && isUnderstanding(each) && Tools::isExecutableFile(each))
            return each;
    return u"/bin/sh"_s;
}

std::optional<QByteArray> resumeScript(const QString &command, const QString &shell)
{
    if (command.size() > longestCommand || command.contains(QChar::Null))
        return std::nullopt;
    const bool isCShell =
        QFileInfo(shell).fileName().endsWith("csh"_L1); // which takes -l only without a file
    const QString flag = isCShell ? QString() : u" -l"_s;
    const QString last = shell == u"/bin/zsh" ? u"zsh"_s : shell;
    return QString(u"#!" + shell + flag + u'\n' + command + u"\nexec " + last + u" -l\n").toUtf8();
}

} // namespace nubble
