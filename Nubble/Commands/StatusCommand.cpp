#include "Commands/StatusCommand.h"

#include <QDateTime>
#include <QEventLoop>
#include <QJsonDocument>

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

#include "Ask/AskClaude.h"
#include "Commands/CommandClient.h"
#include "Commands/CommandLine.h"
#include "Commands/StatusReport.h"
#include "Platform/Clock.h"
#include "Platform/Home.h"
#include "Platform/InstanceBus.h"
#include "Platform/ProcessTable.h"
#include "Platform/System.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/Defaults.h"
#include "Usage/PlanUsageMonitor.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

QJsonObject freshRead(const Home &home)
{
    const SystemClock clock;
    const auto processes = System::processTable();
    SessionMonitor monitor(
        home.file(u".claude/sessions"_s), home.file(u".claude/projects"_s), AskClaude::workingDirectory(home),
        *processes, clock);
    const Defaults defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder()));
    const PlanUsageMonitor planUsage(home, clock, PlanUsageMonitor::domainIn(defaults));
    monitor.waitForDone();
    QEventLoop reading;
    QObject::connect(&planUsage, &PlanUsageMonitor::refreshingChanged, &reading, &QEventLoop::quit);
    if (planUsage.isRefreshing())
        reading.exec();
    QJsonObject status{{u"source"_s, u"read"_s}};
    reportSessions(monitor, clock, status);
    reportUsage(planUsage, status);
    return status;
}

qsizetype terminalWidth()
{
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 100;
}

} // namespace

int printStatus(const Home &home, const InstanceBus &bus, bool json)
{
    constexpr auto patience = 2s;
    const BusAnswer answer = bus.call(u"Status"_s, {}, patience);
    QJsonObject report = QJsonDocument::fromJson(answer.values.value(0).toString().toUtf8()).object();
    if (report.isEmpty())
        report = freshRead(home);
    const QByteArray text = json
        ? QJsonDocument(report).toJson(QJsonDocument::Indented)
        : statusTable(report, terminalWidth(), QDateTime::currentDateTime()).toUtf8();
    const bool written = std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout)
            == static_cast<size_t>(text.size())
        && std::fflush(stdout) == 0;
    return written ? exitStatusOf(answer) : fail(ExitFailed, u"the status cannot be written"_s);
}

} // namespace nubble
