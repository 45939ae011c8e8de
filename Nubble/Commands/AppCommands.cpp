#include "Commands/AppCommands.h"

#include "Notch/PanelWindow.h"
#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Platform/MainThread.h"
#include "Sessions/NoticePreferences.h"
#include "Shell/Defaults.h"

using namespace Qt::StringLiterals;

namespace nubble {

AppCommands::AppCommands(
    PanelWindow &panel, NotchPlacement &placement, const MainScreen &mainScreen, Defaults &defaults,
    const ActiveAddons &addons, QObject *parent)
    : QObject(parent), m_panel(panel), m_placement(placement), m_mainScreen(mainScreen), m_defaults(defaults),
      m_addons(addons)
{
}

void AppCommands::show()
{
    assertMainThread("Nubble/Commands/AppCommands");
    m_placement.setVisible(true);
    m_panel.applyPlacement(); // above the others again, also if it was there already
}

void AppCommands::hide()
{
    assertMainThread("Nubble/Commands/AppCommands");
    m_placement.setVisible(false);
}

void AppCommands::toggleVisible()
{
    m_placement.toggleVisible();
}

Outcome AppCommands::openCard(PanelMode mode)
{
    assertMainThread("Nubble/Commands/AppCommands");
    show();
    if (m_panel.openForKeyboard(mode))
        return Outcome::done();
    return Outcome::failed(u"the card is open, but this desktop does not give it the keyboard"_s);
}

void AppCommands::setLocked(bool locked)
{
    m_placement.setLocked(locked);
}

void AppCommands::moveToEdge(NotchEdge edge)
{
    m_placement.moveToEdge(edge, m_mainScreen.frame());
}

void AppCommands::centerOnEdge()
{
    m_placement.centerOnEdge();
}

void AppCommands::toggleAddon(Addon addon)
{
    m_defaults.set(defaultsKey(addon), !m_addons.contains(addon));
    restart();
}

void AppCommands::request(const AddonRequest &request)
{
    assertMainThread("Nubble/Commands/AppCommands");
    if (const Outcome outcome = perform(request); !outcome.isDone())
        Q_EMIT refused(addonOf(request), outcome.why());
}

Outcome AppCommands::perform(const AddonRequest &request)
{
    assertMainThread("Nubble/Commands/AppCommands");
    const auto handler = m_handlers.find(addonOf(request));
    if (handler == m_handlers.end())
        return Outcome::failed(
            u"This version has nothing to open for \"%1\" yet."_s.arg(title(addonOf(request))));
    Outcome outcome = handler->second(request);
    Q_EMIT statusTouched();
    return outcome;
}

Outcome AppCommands::performFromOutside(const AddonRequest &request)
{
    const Addon addon = addonOf(request);
    if (!m_addons.contains(addon))
        return Outcome::failed(offText(addon));
    return perform(request);
}

void AppCommands::setNotifying(bool on)
{
    assertMainThread("Nubble/Commands/AppCommands");
    NoticePreferences::setOn(m_defaults, on);
    Q_EMIT notifyingChanged();
    Q_EMIT statusTouched();
}

void AppCommands::bringNext(const Told &told)
{
    assertMainThread("Nubble/Commands/AppCommands");
    m_bringNext(told);
}

void AppCommands::refreshAll()
{
    assertMainThread("Nubble/Commands/AppCommands");
    for (const auto &refresh : m_refreshes)
        refresh();
}

QJsonObject AppCommands::status() const
{
    assertMainThread("Nubble/Commands/AppCommands");
    QJsonObject status{{u"source"_s, u"running"_s}};
    for (const Report &report : m_reports)
        report(status);
    return status;
}

void AppCommands::restart()
{
    assertMainThread("Nubble/Commands/AppCommands");
    m_defaults.synchronize();
    Q_EMIT restartRequested();
}

void AppCommands::quit()
{
    assertMainThread("Nubble/Commands/AppCommands");
    Q_EMIT quitRequested();
}

void AppCommands::setHandler(Addon addon, Handler handler)
{
    m_handlers.insert_or_assign(addon, std::move(handler));
}

void AppCommands::setNext(std::function<void(const Told &)> bringNext)
{
    m_bringNext = std::move(bringNext);
}

void AppCommands::addReport(Report report)
{
    m_reports.push_back(std::move(report));
}

void AppCommands::addRefresh(std::function<void()> refresh)
{
    m_refreshes.push_back(std::move(refresh));
}

} // namespace nubble
