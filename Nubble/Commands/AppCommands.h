#pragma once

#include <QJsonObject>
#include <QObject>

#include <functional>
#include <map>
#include <vector>

#include "Commands/AddonRequest.h"
#include "Notch/PanelState.h"
#include "Placement/NotchEdge.h"
#include "Platform/Outcome.h"
#include "Shell/Addon.h"

namespace nubble {

class Defaults;
class MainScreen;
class NotchPlacement;
class PanelWindow;

// What can be asked of the whole program, whether by a menu, the tray, a key, a button, the bus or the
// command line. What the features do about it is registered by whoever has made them. Main thread only.
class AppCommands : public QObject {
    Q_OBJECT

public:
    AppCommands(
        PanelWindow &panel, NotchPlacement &placement, const MainScreen &mainScreen, Defaults &defaults,
        const ActiveAddons &addons, QObject *parent = nullptr);

    void show();
    void hide();
    void toggleVisible();
    Outcome openCard(PanelMode mode); // with the keyboard in it; a hidden panel is shown
    void setLocked(bool locked);
    void moveToEdge(NotchEdge edge);
    void centerOnEdge();

    void toggleAddon(Addon addon);                           // takes effect by a restart, at once
    void request(const AddonRequest &request);               // the user's; `refused` says why it is not done
    Outcome perform(const AddonRequest &request);            // the program's own
    Outcome performFromOutside(const AddonRequest &request); // reaches only what is switched on

    void setNotifying(bool on); // by the desktop's notices, of sessions
    // The session that needs the user most. `told` is called once, perhaps later: done, or why not.
    using Told = std::function<void(const Outcome &)>;
    void bringNext(const Told &told);

    void refreshAll();
    [[nodiscard]] QJsonObject status() const;
    void restart();
    void quit();

    using Handler = std::function<Outcome(const AddonRequest &)>;
    using Report = std::function<void(QJsonObject &status)>; // adds what one part has to tell
    void setHandler(Addon addon, Handler handler);
    void setNext(std::function<void(const Told &)> bringNext);
    void addReport(Report report);
    void addRefresh(std::function<void()> refresh);

Q_SIGNALS:
    void notifyingChanged();
    void refused(nubble::Addon addon, const QString &why);
    void restartRequested();
    void quitRequested();
    void statusTouched(); // by whatever may have changed what status() tells

private:
    PanelWindow &m_panel;
    NotchPlacement &m_placement;
    const MainScreen &m_mainScreen;
    Defaults &m_defaults;
    const ActiveAddons &m_addons;
    std::map<Addon, Handler> m_handlers;
    std::function<void(const Told &)> m_bringNext;
    std::vector<Report> m_reports;
    std::vector<std::function<void()>> m_refreshes;
};

} // namespace nubble
