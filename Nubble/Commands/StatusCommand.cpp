#include "Commands/StatusCommand.h"

#include <QDateTime>
#include <QEventLoop>
#include <QJsonDocument>

#include "Ask/AskClaude.h"
#include "Commands/CommandClient.h"
#include "Commands/CommandLine.h"
#include "Commands/StatusReport.h"
#include "Platform/Clock.h"
#include "Platform/Home.h"
#include "Platform/InstanceClient.h"
#include "Platform/ProcessTable.h"
#include "Platform/System.h"
#include "Sessions/ClaudeFolders.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/Defaults.h"
#include "Usage/PlanUsageMonitor.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QJsonObject freshRead(const Home &home)
{
    const SystemClock clock;
    const auto processes = System::processTable();
    const Defaults defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder()));
    SessionMonitor monitor(
        claudeFolders(home, defaults), AskClaude::workingDirectory(home), *processes, clock);
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

} // namespace

int printStatus(const Home &home, bool json)
{
    const QJsonObject report = freshRead(home);
    const QByteArray text = json
        ? statusJson(report)
        : statusTable(report, terminalWidth(), QDateTime::currentDateTime()).toUtf8();
    const int printed = print(text.toStdString());
    return printed == ExitDone ? exitStatusOf({}) : printed;
}

} // namespace nubble
