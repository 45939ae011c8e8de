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

// Everything that the panel and its menus stand on, in a home of its own. Needs a QGuiApplication and the
// libraries of the sessions and the panel.
struct PanelWorld {
    explicit PanelWorld(const QByteArray &stored = {})
        : defaults(home.write(QStringLiteral("preferences.conf"), "[General]\n" + stored)), addons(defaults),
          layout(11, false, static_cast<int>(addons.actions().size())), placement(defaults, layout),
          monitor(
              home.path(QStringLiteral(".claude/sessions")), home.path(QStringLiteral(".claude/projects")),
              processes, clock),
          planUsage(home.home(), clock, PlanUsageMonitor::defaultDomain),
          activator(workspace, [](pid_t) { return std::nullopt; })
    {
    }

    // A session whose activity `age` ago was the last; `more` are further keys of its record.
    void addSession(
        pid_t pid, const QString &name, const QString &status, std::chrono::milliseconds age,
        QJsonObject more = {})
    {
        more.insert(QStringLiteral("pid"), pid);
        more.insert(QStringLiteral("name"), name);
        more.insert(QStringLiteral("status"), status);
        const auto defaultTo = [&more](const QString &key, const QJsonValue &value) {
            if (!more.contains(key))
                more.insert(key, value);
        };
        defaultTo(QStringLiteral("sessionId"), QStringLiteral("session-%1").arg(pid));
        defaultTo(QStringLiteral("cwd"), QStringLiteral("/home/ada/project"));
        defaultTo(QStringLiteral("nameSource"), QStringLiteral("user"));
        defaultTo(QStringLiteral("startedAt"), msecs(clock.now() - std::chrono::hours(24)));
        defaultTo(QStringLiteral("updatedAt"), msecs(clock.now() - age));
        processes.alive.insert(pid);
        home.write(QStringLiteral(".claude/sessions/%1.json").arg(pid), QJsonDocument(more).toJson());
    }

    [[nodiscard]] PanelGeometry geometry() const
    {
        const QRectF screen = *mainScreen.frame();
        return panelGeometry(layout, placement.edge(), placement.clamp(placement.offset(), screen), screen);
    }
    // As a record writes it.
    static qint64 msecs(TimePoint time) { return time.time_since_epoch().count(); }

    void endSession(pid_t pid) { processes.alive.remove(pid); }

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
