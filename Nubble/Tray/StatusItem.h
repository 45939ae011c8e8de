#pragma once

#include <QColor>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

#include "Widgets/Menu.h"

namespace nubble {

class StatusHost;

// The program's icon among the desktop's status items, with its menu. Comes as soon as the desktop shows such
// items. Main thread only.
class StatusItem : public QObject {
    Q_OBJECT

public:
    using MenuSource = std::function<QList<MenuEntry>()>;

    // `menu` is asked each time that the menu opens.
    StatusItem(const StatusHost &host, MenuSource menu, bool panelVisible, QObject *parent = nullptr);
    ~StatusItem() override;

    // Whenever one of the panel's settings has changed: icon, tool tip and a closed menu follow.
    void update(bool panelVisible);

    void setTranslucent(bool translucent); // whether windows can be, such as the menu where that is ours

    void showMessage(const QString &title, const QString &text); // a notification, where there is an icon

Q_SIGNALS:
    void clicked();
    void menuRequested(); // from a desktop that does not draw menus itself

private:
    struct Look {
        bool panelVisible = true;
        std::optional<QColor> color = std::nullopt; // of icons on the desktop's tray

        bool operator==(const Look &) const = default;
    };

    void followHost();
    void create();
    void react(QSystemTrayIcon::ActivationReason reason);
    void show();
    void refillMenu();

    const StatusHost &m_host;
    MenuSource m_source;
    bool m_menuOpen = false;
    Look m_look;
    std::optional<Look> m_shown; // what the desktop has been told
    QTimer m_refill;
    Menu m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon; // before the menu goes
};

} // namespace nubble
