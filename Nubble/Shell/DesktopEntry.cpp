#include "Shell/DesktopEntry.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include "Platform/Home.h"
#include "Platform/MainThread.h"
#include "Shell/ChildProcess.h"
#include "Shell/Tools.h"

using namespace Qt::StringLiterals;

namespace nubble {

bool launchDesktopEntry(const QString &identifier, const Home &home)
{
    assertMainThread("Nubble/Shell/DesktopEntry");
    const QString entry =
        QStandardPaths::locate(QStandardPaths::ApplicationsLocation, identifier + u".desktop");
    const auto launcher = Tools::find(u"gio"_s, home);
    if (entry.isEmpty() || !launcher)
        return false;
    auto *process = new ChildProcess(
        {.program = *launcher, .arguments = {u"launch"_s, entry}, .folder = home.path()}, {},
        ChildProcess::Delivery::None, ChildProcess::Lifetime::ItsOwn, qApp);
    QObject::connect(process, &ChildProcess::ended, process, &QObject::deleteLater);
    process->start();
    return true;
}

} // namespace nubble
