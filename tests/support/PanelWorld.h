#pragma once

#include <QJsonDocument>
#include <QJsonObject>

#include "Notch/PanelState.h"
#include "Placement/Layout.h"
#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Placement/PanelGeometry.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "Shell/NotificationCenter.h"
#include "Usage/PlanUsageMonitor.h"
#include "support/FakeDesktopPreferences.h"
#include "support/FakeProcessTable.h"
#include "support/FakeWorkspace.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

namespace nubble {

// Everything that the panel and its menus stand on, in a home of its own. Needs a QGuiApplication.
struct PanelWorld {
    explicit PanelWorld(const QByteArray &stored = {})
        : defaults(home.write(QStringLiteral("preferences.conf"), "[General]\n" + stored)), addons(defaults),
          layout(11, false, static_cast<int>(addons.actions().size())), placement(defaults, layout),
          monitor(
              QStringList{home.path(QStringLiteral(".claude"))}, home.path(QStringLiteral(".nubble/ask")),
              processes, clock),
          planUsage(home.home(), clock, PlanUsageMonitor::defaultDomain),
          activator(workspace, {processes, [](pid_t) { return std::nullopt; }, {}})
    {
    }

    // A session whose activity `age` ago was the last; `more` are other keys of its record.
    void addSession(
        pid_t pid, const QString &name, const QString &status, std::chrono::milliseconds age,
        const QJsonObject &more = {})
    {
        using namespace Qt::StringLiterals;
        QVariantMap record{
            {u"pid"_s, pid},
            {u"name"_s, name},
            {u"status"_s, status},
            {u"sessionId"_s, u"session-%1"_s.arg(pid)},
            {u"cwd"_s, u"/home/ada/project"_s},
            {u"nameSource"_s, u"user"_s},
            {u"startedAt"_s, msecs(clock.now() - std::chrono::hours(24))},
            {u"updatedAt"_s, msecs(clock.now() - age)}};
        record.insert(more.toVariantMap());
        processes.alive.insert(pid);
        home.write(u".claude/sessions/%1.json"_s.arg(pid), QJsonDocument::fromVariant(record).toJson());
    }
    void readSessions()
    {
        monitor.refresh();
        monitor.waitForDone();
    }
    void endSession(pid_t pid) { processes.alive.remove(pid); }

    [[nodiscard]] PanelGeometry geometry() const
    {
        const QRectF screen = *mainScreen.frame();
        return panelGeometry(
            layout, placement.edge(), placement.clamp(placement.offset(), screen), screen, placement.scale());
    }
    static qint64 msecs(TimePoint time) { return time.time_since_epoch().count(); }

    TemporaryHome home;
    ManualClock clock;
    FakeProcessTable processes;
    FakeWorkspace workspace;
    FakeDesktopPreferences preferences;
    Defaults defaults;
    ActiveAddons addons;
    Layout layout;
    MainScreen mainScreen;
    NotchPlacement placement;
    PanelState state;
    NotificationCenter notifications;
    SessionMonitor monitor;
    PlanUsageMonitor planUsage;
    ProcessActivator activator;
};

} // namespace nubble
