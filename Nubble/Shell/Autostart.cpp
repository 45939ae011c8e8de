#include "Shell/Autostart.h"

#include <QDir>
#include <QSaveFile>

#include <algorithm>
#include <filesystem>

#include "Shell/Relaunch.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

bool isPlain(QChar character)
{
    return character.isLetterOrNumber() || u"/._-+,:@"_s.contains(character);
}

// Escaped for the quotes, then as any text of a desktop entry; a percent sign begins a field code.
QString quoted(const QString &argument)
{
    QString result = u"\""_s;
    for (const QChar character : argument) {
        if (character == u'\\')
            result += u"\\\\\\\\"_s;
        else if (u"\"`$"_s.contains(character))
            result += u"\\\\"_s + character;
        else if (character == u'%')
            result += u"%%"_s;
        else if (character == u'\n')
            result += u"\\n"_s;
        else if (character == u'\r')
            result += u"\\r"_s;
        else if (character == u'\t')
            result += u"\\t"_s;
        else
            result += character;
    }
    return result + u'"';
}

// A command as the Exec line of a desktop entry spells it.
QString execLine(const QStringList &command)
{
    QStringList spelled;
    if (command.first().contains(u'%')) // GLib looks for the program by its doubled name
        spelled.append(u"env"_s);
    for (const QString &argument : command) {
        const bool plain = !argument.isEmpty() && std::all_of(argument.begin(), argument.end(), isPlain);
        spelled.append(plain ? argument : quoted(argument));
    }
    return spelled.join(u' ');
}

} // namespace

Autostart::Autostart(const QString &configFolder)
    : m_folder(configFolder + u"/autostart"), m_file(m_folder + u"/com.brevandel.nubble.desktop")
{
}

Outcome Autostart::enable(const Relaunch &start) const
{
    const QString entry = u"[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Nubble\n"
                          "Comment=Shows what your Claude Code sessions are doing\n"
                          "Icon=com.brevandel.nubble\n"
                          "Exec=%1\n"_s.arg(execLine(QStringList(start.program) + start.arguments));
    if (!QDir().mkpath(m_folder))
        return Outcome::failed(u"the folder %1 cannot be made"_s.arg(m_folder));
    QSaveFile file(m_file);
    if (!file.open(QIODevice::WriteOnly) || file.write(entry.toUtf8()) < 0 || !file.commit())
        return Outcome::failed(u"%1 cannot be written: %2"_s.arg(m_file, file.errorString()));
    return Outcome::done();
}

Outcome Autostart::disable() const
{
    std::error_code error;
    std::filesystem::remove(QFile::encodeName(m_file).toStdString(), error);
    if (error)
        return Outcome::failed(
            u"%1 cannot be removed: %2"_s.arg(m_file, QString::fromLocal8Bit(error.message().c_str())));
    return Outcome::done();
}

} // namespace nubble
