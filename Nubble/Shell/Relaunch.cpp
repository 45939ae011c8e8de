#include "Shell/Relaunch.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

#include <linux/close_range.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nubble {

Relaunch Relaunch::ofThisProgram(const QStringList &arguments)
{
    const QString name = QCoreApplication::arguments().value(0);
    return {QDir::isAbsolutePath(name) ? name : QCoreApplication::applicationFilePath(), arguments};
}

void Relaunch::now() const
{
    QProcess::startDetached(
        u"/bin/sh"_s, QStringList{u"-c"_s, u"sleep 0.6; exec \"$0\" \"$@\""_s, program} + arguments);
}

bool Relaunch::startDetached() const
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(QDir::rootPath());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC); // what a script has left open for us, such as a lock
    return process.startDetached();
}

} // namespace nubble
