#pragma once

#include <QObject>
#include <QPointF>
#include <QRectF>

#include "Placement/NotchEdge.h"

namespace nubble {

class Defaults;
class Layout;

// Where the user has put the panel, and how large it is there, kept in the preferences. Screen rectangles are
// whole screens, docks included, with y growing downwards. Main thread only. A hand-edited preference of the
// wrong kind counts as absent.
class NotchPlacement : public QObject {
    Q_OBJECT

public:
    NotchPlacement(Defaults &defaults, const Layout &layout, QObject *parent = nullptr);

    [[nodiscard]] NotchEdge edge() const { return m_settings.edge; }
    [[nodiscard]] double offset() const
    {
        return m_settings.offset;
    } // of the centre from the edge's middle: right, down
    [[nodiscard]] bool isLocked() const { return m_settings.locked; } // cannot be dragged
    [[nodiscard]] bool isVisible() const { return m_settings.visible; }
    [[nodiscard]] double scale() const { return m_settings.scale; } // 1 as it was drawn
    [[nodiscard]] bool isDragging() const { return m_dragging; }    // never saved
    void setDragging(bool dragging); // the preferences are written when it has ended

    // The nearest offset that keeps the panel on the screen.
    [[nodiscard]] double clamp(double offset, const QRectF &screen) const;

    // Follows the mouse to the nearest edge. Does nothing while locked.
    void moveTo(const QPointF &screenPoint, const QRectF &screen);

    // Keeps the offset, as far as it fits on the screen.
    void moveToEdge(NotchEdge edge, const std::optional<QRectF> &screen);

    void centerOnEdge();
    void setLocked(bool locked);
    void setVisible(bool visible);
    void toggleVisible() { setVisible(!isVisible()); }

    // By steps of a tenth from the scale that is shown, as far as it goes; below 0 the panel becomes smaller.
    void enlarge(int steps, double shown);

Q_SIGNALS:
    void changed(); // any of edge, offset, locked, visible, scale

private:
    struct Settings {
        NotchEdge edge = NotchEdge::Right;
        double offset = 0;
        bool locked = false;
        bool visible = true;
        double scale = 1;

        bool operator==(const Settings &) const = default;
    };

    [[nodiscard]] double clampOn(NotchEdge edge, double offset, const QRectF &screen) const;
    void apply(const Settings &settings);
    void save();

    Defaults &m_defaults;
    const Layout &m_layout;
    Settings m_settings;
    bool m_dragging = false;
};

} // namespace nubble
