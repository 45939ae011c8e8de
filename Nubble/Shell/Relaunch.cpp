#include "Shell/Relaunch.h"

#include <QCoreApplication>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace nubble {

Relaunch Relaunch::ofThisProcess()
{
    return {QCoreApplication::applicationFilePath(), QCoreApplication::arguments().sliced(1)};
}

void Relaunch::now() const
{
    QProcess::startDetached(
        u"/bin/sh"_s, QStringList{u"-c"_s, u"sleep 0.6; exec \"$0\" \"$@\""_s, program} + arguments);
}

} // namespace nubble
