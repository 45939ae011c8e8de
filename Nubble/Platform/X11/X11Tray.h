#pragma once

#include <QColor>

#include <optional>

#include "Platform/X11/X11SelectionWatch.h"

namespace nubble {

// The tray that embeds windows of other programs (freedesktop.org's System Tray Protocol). Main thread only.
class X11Tray : public QObject {
    Q_OBJECT

public:
    explicit X11Tray(std::shared_ptr<const X11Connection> x11);

    [[nodiscard]] bool isThere() const { return m_manager.isOwned(); }

    // The colour of symbolic icons in it, where it announces one. Asks the X server.
    [[nodiscard]] std::optional<QColor> foreground() const;

Q_SIGNALS:
    void changed();

private:
    std::shared_ptr<const X11Connection> m_x11;
    X11SelectionWatch m_manager;
};

} // namespace nubble
