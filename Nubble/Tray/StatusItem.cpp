#include "Tray/StatusItem.h"

#include "Platform/MainThread.h"
#include "Platform/StatusHost.h"
#include "Tray/Mark.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// The installed icon that desktops colour themselves. Empty where it is not installed.
QString themeName(bool panelVisible)
{
    const QString name =
        panelVisible ? u"com.brevandel.nubble-symbolic"_s : u"com.brevandel.nubble-hidden-symbolic"_s;
    return QIcon::hasThemeIcon(name) ? name : QString();
}

} // namespace

StatusItem::StatusItem(const StatusHost &host, MenuSource menu, bool panelVisible, QObject *parent)
    : QObject(parent), m_host(host), m_source(std::move(menu)), m_look{.panelVisible = panelVisible}
{
    m_refill.setSingleShot(true);
    m_refill.setInterval(std::chrono::milliseconds(200));
    connect(&m_refill, &QTimer::timeout, this, &StatusItem::refillMenu);
    connect(&m_menu, &QMenu::aboutToShow, this, [this] {
        refillMenu();
        m_menuOpen = true;
    });
    connect(&m_menu, &QMenu::aboutToHide, this, [this] {
        m_menuOpen = false;
        update(m_look.panelVisible);
    });
    connect(&m_host, &StatusHost::changed, this, &StatusItem::followHost);
    followHost();
}

StatusItem::~StatusItem() = default;

void StatusItem::followHost()
{
    const bool isHosted = m_host.kind() != StatusHost::Kind::None;
    if (m_icon && !isHosted) {
        m_icon.reset(); // a host that comes later has to be told of a new one
        m_shown.reset();
    } else if (!m_icon && isHosted) {
        create();
    }
    m_look.color = m_host.foreground();
    update(m_look.panelVisible);
}

// Not before there is a host: the toolkit picks its protocol once, by what it finds at this moment.
void StatusItem::create()
{
    m_icon = std::make_unique<QSystemTrayIcon>();
    refillMenu();
    if (m_host.kind() == StatusHost::Kind::Remote)
        m_icon->setContextMenu(&m_menu); // else the toolkit would open it with its shadow at the pointer
    connect(m_icon.get(), &QSystemTrayIcon::activated, this, &StatusItem::react);
}

void StatusItem::react(QSystemTrayIcon::ActivationReason reason)
{
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
        Q_EMIT clicked();
    else if (reason == QSystemTrayIcon::Context && m_icon->contextMenu())
        Q_EMIT menuRequested();
    else if (reason == QSystemTrayIcon::Context)
        m_menu.openAt(QCursor::pos());
}

void StatusItem::update(bool panelVisible)
{
    assertMainThread("Nubble/Tray/StatusItem");
    m_look.panelVisible = panelVisible;
    if (!m_icon)
        return;
    show();
    // What some desktops show first is what they read last, before they ask for anything newer. Not at every
    // step of a drag.
    if (m_host.kind() == StatusHost::Kind::Remote && !m_menuOpen)
        m_refill.start();
}

// Every change is sent to the desktop, even one to the same.
void StatusItem::show()
{
    if (m_shown == m_look)
        return;
    m_shown = m_look;
    const bool panelVisible = m_look.panelVisible;
    m_icon->setIcon(Mark::icon(m_look.color, panelVisible, themeName(panelVisible)));
    m_icon->setToolTip(panelVisible ? u"Hide Nubble"_s : u"Show Nubble"_s);
    m_icon->show();
}

void StatusItem::refillMenu()
{
    m_refill.stop();
    const bool remote = m_host.kind() == StatusHost::Kind::Remote;
    m_menu.setEntries(m_source(), remote ? Menu::Drawing::Desktop : Menu::Drawing::Own);
}

void StatusItem::setTranslucent(bool translucent)
{
    m_menu.setTranslucent(translucent);
}

void StatusItem::showMessage(const QString &title, const QString &text)
{
    assertMainThread("Nubble/Tray/StatusItem");
    if (m_icon)
        m_icon->showMessage(title, text, m_icon->icon());
}

} // namespace nubble
