#include "Platform/X11/X11Tray.h"

#include "Platform/X11/X11Connection.h"

namespace nubble {

X11Tray::X11Tray(std::shared_ptr<const X11Connection> x11)
    : m_x11(std::move(x11)), m_manager(m_x11, X11Atom::SystemTray)
{
    connect(&m_manager, &X11SelectionWatch::changed, this, &X11Tray::changed);
}

// Four colours of three numbers each, up to 65535: foreground, error, warning, success.
std::optional<QColor> X11Tray::foreground() const
{
    if (!isThere())
        return std::nullopt;
    const auto colors =
        X11Property(*m_x11, m_manager.owner(), m_x11->atom(X11Atom::NetSystemTrayColors)).numbers();
    const auto level = [&colors](size_t i) { return static_cast<int>(std::min(colors[i], 65535U) >> 8); };
    return colors.size() < 3 ? std::nullopt : std::optional(QColor(level(0), level(1), level(2)));
}

} // namespace nubble
