#pragma once

#include <QTimer>

#include <memory>

#include "Platform/StatusHost.h"

namespace nubble {

class StatusNotifierWatch;
class X11Tray;

// Picks one of the two protocols for status items: the one on the session bus, if a desktop with both comes
// up slowly, too. Once picked it stays, as does Qt's own choice; while the host on the bus is gone there is
// none.
class DesktopStatusHost : public StatusHost {
    Q_OBJECT

public:
    // `tray` is null where there is no X server. `patience` is how long an announced host on the bus is
    // waited for while a tray is there.
    DesktopStatusHost(
        std::unique_ptr<StatusNotifierWatch> notifiers, std::unique_ptr<X11Tray> tray,
        std::chrono::milliseconds patience = std::chrono::seconds(10));
    ~DesktopStatusHost() override;

    [[nodiscard]] Kind kind() const override { return m_isHostGone ? Kind::None : m_kind; }
    [[nodiscard]] std::optional<QColor> foreground() const override;

private:
    void decide();
    void settleFor(Kind kind);

    std::unique_ptr<StatusNotifierWatch> m_notifiers;
    std::unique_ptr<X11Tray> m_tray;
    QTimer m_patience;
    Kind m_kind = Kind::None; // as picked
    bool m_isHostGone = false;
};

} // namespace nubble
