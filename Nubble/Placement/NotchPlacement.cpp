#include "Placement/NotchPlacement.h"

#include <algorithm>
#include <cmath>

#include "Placement/Layout.h"
#include "Platform/MainThread.h"
#include "Shell/Defaults.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const QString edgeKey = u"placement.edge"_s;
const QString offsetKey = u"placement.offset"_s;
const QString lockedKey = u"placement.locked"_s;
const QString visibleKey = u"placement.visible"_s;
const QString scaleKey = u"panel.scale"_s;

// The nearest of those that there are.
double validScale(double scale)
{
    constexpr double steps = 10;
    return std::round(std::clamp(scale, 0.8, 2.0) * steps) / steps;
}

// On equal distances the first in this order wins.
NotchEdge nearestEdge(const QPointF &point, const QRectF &screen)
{
    struct Distance {
        NotchEdge edge;
        double length;
    };
    const std::array distances{
        Distance{NotchEdge::Left, point.x() - screen.left()},
        Distance{NotchEdge::Right, screen.right() - point.x()},
        Distance{NotchEdge::Bottom, screen.bottom() - point.y()},
        Distance{NotchEdge::Top, point.y() - screen.top()},
    };
    return std::min_element(
               distances.begin(), distances.end(),
               [](const Distance &a, const Distance &b) { return a.length < b.length; })
        ->edge;
}

double offsetOf(NotchEdge edge, const QPointF &point, const QRectF &screen)
{
    const QPointF fromCenter = point - screen.center();
    return isVertical(edge) ? fromCenter.y() : fromCenter.x();
}

} // namespace

NotchPlacement::NotchPlacement(Defaults &defaults, const Layout &layout, QObject *parent)
    : QObject(parent), m_defaults(defaults), m_layout(layout),
      m_settings{
          .edge = edgeFrom(defaults.string(edgeKey).value_or(QString())).value_or(NotchEdge::Right),
          .offset = defaults.number(offsetKey).value_or(0),
          .locked = defaults.boolean(lockedKey).value_or(false),
          .visible = defaults.boolean(visibleKey).value_or(true),
          .scale = validScale(defaults.number(scaleKey).value_or(1)),
      }
{
}

void NotchPlacement::setDragging(bool dragging)
{
    m_dragging = dragging;
    m_defaults.setHeld(dragging);
}

double NotchPlacement::clamp(double offset, const QRectF &screen) const
{
    return clampOn(edge(), offset, screen);
}

double NotchPlacement::clampOn(NotchEdge edge, double offset, const QRectF &screen) const
{
    const double limit = m_layout.offsetLimit(edge, Layout::along(edge, screen.size()) / scale()) * scale();
    return std::clamp(offset, -limit, limit);
}

void NotchPlacement::moveTo(const QPointF &screenPoint, const QRectF &screen)
{
    if (isLocked())
        return;
    Settings moved = m_settings;
    moved.edge = nearestEdge(screenPoint, screen);
    moved.offset = clampOn(moved.edge, offsetOf(moved.edge, screenPoint, screen), screen);
    apply(moved);
}

void NotchPlacement::moveToEdge(NotchEdge edge, const std::optional<QRectF> &screen)
{
    Settings moved = m_settings;
    moved.edge = edge;
    if (screen)
        moved.offset = clampOn(edge, moved.offset, *screen);
    apply(moved);
}

void NotchPlacement::centerOnEdge()
{
    Settings centered = m_settings;
    centered.offset = 0;
    apply(centered);
}

void NotchPlacement::setLocked(bool locked)
{
    Settings changed = m_settings;
    changed.locked = locked;
    apply(changed);
}

void NotchPlacement::setVisible(bool visible)
{
    Settings shown = m_settings;
    shown.visible = visible;
    apply(shown);
}

void NotchPlacement::enlarge(int steps, double shown)
{
    Settings enlarged = m_settings;
    enlarged.scale = validScale(shown + steps / 10.0);
    apply(enlarged);
}

void NotchPlacement::apply(const Settings &settings)
{
    assertMainThread("Nubble/Placement/NotchPlacement");
    if (m_settings == settings)
        return;
    m_settings = settings;
    save();
    Q_EMIT changed();
}

void NotchPlacement::save()
{
    m_defaults.set(edgeKey, rawValue(m_settings.edge));
    m_defaults.set(offsetKey, m_settings.offset);
    m_defaults.set(lockedKey, m_settings.locked);
    m_defaults.set(visibleKey, m_settings.visible);
    m_defaults.set(scaleKey, m_settings.scale);
}

} // namespace nubble
