#include "Platform/X11/X11ShellBars.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11Geometry.h"

namespace nubble {

X11ShellBars::X11ShellBars(std::shared_ptr<const X11Connection> x11)
    : m_x11(std::move(x11)), m_watch(m_x11, {X11Atom::NetSupportingWmCheck, X11Atom::GtkWorkAreas})
{
    connect(&m_watch, &X11PropertyWatch::changed, this, [this] {
        read();
        Q_EMIT changed();
    });
    read();
}

void X11ShellBars::read()
{
    m_workAreas.clear();
    if (areAboveWindows())
        m_workAreas = X11Property(*m_x11, m_x11->root(), m_x11->atom(X11Atom::GtkWorkAreas)).numbers();
}

// By the names of the window managers that the desktops are made of.
bool X11ShellBars::areAboveWindows() const
{
    const auto window =
        X11Property(*m_x11, m_x11->root(), m_x11->atom(X11Atom::NetSupportingWmCheck)).numbers();
    if (window.empty())
        return false;
    const QByteArray name = X11Property(*m_x11, window.front(), m_x11->atom(X11Atom::NetWmName)).text();
    return name == "GNOME Shell" || name == "Mutter (Muffin)";
}

QMargins X11ShellBars::reach() const
{
    const QScreen *primary = QGuiApplication::primaryScreen();
    if (!primary || m_workAreas.empty())
        return {};
    const QRect screen = X11Geometry::deviceScreenAt(*m_x11, primary->geometry().topLeft());
    const auto units = [scale = primary->devicePixelRatio()](int pixels) {
        return static_cast<int>(std::ceil(pixels / scale));
    };
    for (size_t i = 0; i + 3 < m_workAreas.size(); i += 4) {
        const QRect area(
            static_cast<int>(m_workAreas[i]), static_cast<int>(m_workAreas[i + 1]),
            static_cast<int>(m_workAreas[i + 2]), static_cast<int>(m_workAreas[i + 3]));
        if (!area.isEmpty() && screen.contains(area))
            return {
                units(area.left() - screen.left()), units(area.top() - screen.top()),
                units(screen.right() - area.right()), units(screen.bottom() - area.bottom())};
    }
    return {};
}

} // namespace nubble
