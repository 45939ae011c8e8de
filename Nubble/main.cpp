#include <QApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QPalette>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sys/prctl.h>
#include <vector>

#include "AppDelegate.h"
#include "Commands/CommandClient.h"
#include "Commands/CommandLine.h"
#include "Commands/ControlObject.h"
#include "Commands/StartCommand.h"
#include "Commands/StatusCommand.h"
#include "Platform/InstanceBus.h"
#include "Platform/InstanceClient.h"
#include "Platform/InstanceLock.h"
#include "Platform/StandardDescriptors.h"
#include "Platform/System.h"
#include "Platform/TerminationSignals.h"
#include "RenderPreview.h"
#include "Shell/Migration.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

// At once: the bus's thread may still be at work, and complains when the program is taken apart around it.
[[noreturn]] void leave(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

void setUpLook()
{
    QApplication::setPalette(Palette::widgets());
    QApplication::setFont(Typography::menu(), "QMenu");
    QApplication::setEffectEnabled(Qt::UI_AnimateMenu, false); // it knows no shadows
}

[[noreturn]] void runCommand(const CommandLine &line, const Home &home)
{
    using Verb = CommandLine::Verb;
    if (line.verb == Verb::AutostartOn || line.verb == Verb::AutostartOff)
        leave(setAutostart(line, home));
    InstanceClient client(line.serviceName());
    if (const std::optional<int> status = runInInstance(line, client))
        leave(*status);
    if (line.verb == Verb::NotificationsOn || line.verb == Verb::NotificationsOff)
        leave(setNotifications(line, home));
    leave(line.verb == Verb::Status ? printStatus(home, line.json) : startFor(line, home));
}

// By the instance that has the lock. It may be about to end, or to find a bus again that it has lost: none
// when the lock has become free.
std::optional<int> answeredElsewhere(InstanceLock &lock, const CommandLine &line)
{
    const QDeadlineTimer patience(InstanceClient::isBusSetUp() ? 10s : 3s);
    InstanceClient client(line.serviceName());
    while (lock.isHeldElsewhere()) {
        if (const std::optional<int> status = runInInstance(line, client))
            return status;
        if (patience.hasExpired())
            return fail(ExitFailed, "Nubble runs already, and cannot be reached over the session bus");
        QThread::msleep(50);
    }
    return std::nullopt;
}

int run(int argc, char *argv[], QByteArray platform, const CommandLine &line, const Home &home)
{
    InstanceLock lock(home.configFolder() + u"/com.brevandel.nubble.lock");
    if (const std::optional<int> status = answeredElsewhere(lock, line))
        return *status;
    auto fonts = System::fontPreload();
    // As an argument, for the environment would be handed down to every child process.
    std::vector<char *> qtArguments(argv, argv + argc);
    QByteArray option("-platform");
    if (!platform.isEmpty())
        qtArguments.insert(qtArguments.begin() + 1, {option.data(), platform.data()});
    int count = static_cast<int>(qtArguments.size());
    qtArguments.push_back(nullptr);
    QCoreApplication::setAttribute(Qt::AA_DisableSessionManager); // which would start it again by itself
    QApplication application(count, qtArguments.data());
    QApplication::setApplicationName(u"Nubble"_s); // desktops list the status item by it
    QApplication::setApplicationDisplayName(u"Nubble"_s);
    QApplication::setDesktopFileName(u"com.brevandel.nubble"_s);
    setUpLook();
    QApplication::setQuitOnLastWindowClosed(false);

    const auto bus = System::instanceBus(QString::fromStdString(line.serviceName()));
    ControlObject control;
    if (!bus->claim(&control)) { // an instance would have the lock, too
        InstanceClient client(line.serviceName());
        leave(runInInstance(line, client).value_or(ExitFailed));
    }
    {
        Defaults defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder()));
        Migration::fromBrindleCove(defaults, home);
    }
    fonts.reset();
    auto termination = System::terminationSignals(); // from before the panel is seen
    QObject::connect(termination.get(), &TerminationSignals::received, &application, &AppDelegate::end);
    AppDelegate delegate(home, *bus, Relaunch::ofThisProgram(startArguments(line)));
    control.serve(delegate.commands());
    const int status = QApplication::exec();
    termination.reset(); // another one ends what hangs
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardDescriptors();
    ::prctl(PR_SET_NAME, "nubble"); // by which users know it
    if (const std::optional<int> status = RenderPreview::runIfAsked(argc, argv))
        return *status;
    const auto parsed = parseCommandLine(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
    if (const auto *error = std::get_if<UsageError>(&parsed))
        return fail(ExitWrongUsage, error->message);
    const CommandLine &line = *std::get_if<CommandLine>(&parsed);
    const Home home = line.home ? Home(QFile::decodeName(line.home->c_str())) : Home::ofUser();

    if (line.verb == CommandLine::Verb::Run || line.verb == CommandLine::Verb::Start)
        if (const std::optional<QByteArray> platform = qtPlatform())
            return run(argc, argv, *platform, line, home);
    const QCoreApplication application(argc, argv);
    runCommand(line, home);
}
