#pragma once

#include <QLabel>
#include <QMouseEvent>
#include <QWidget>

#include <functional>

#include "Platform/PanelSurface.h"

namespace nubble {

// A plain window that remembers what was asked of it.
class FakePanelSurface : public PanelSurface {
public:
    using PanelSurface::PanelSurface;

    void place(const SurfacePlace &where) override
    {
        ++placements;
        last = where;
        window().setGeometry(where.frame);
    }
    void orderFront() override { window().show(); }
    void orderOut() override { window().hide(); }
    [[nodiscard]] bool isTranslucent() const override { return translucent; }
    void setOutline(const QPainterPath &path) override
    {
        outline = path;
        outlined();
    }
    void setOpacity(double value) override { opacity = value; }
    [[nodiscard]] QMargins barsAbove() const override { return bars; }
    [[nodiscard]] bool passesClicksThrough() const override { return passesClicks; }
    [[nodiscard]] bool takeKeyboard() override
    {
        hasKeyboard = givesKeyboard;
        window().activateWindow();
        return hasKeyboard;
    }
    void releaseKeyboard() override { hasKeyboard = false; }
    void beginMove() override { log.append(QStringLiteral("begin")); }
    void endMove() override { log.append(QStringLiteral("end")); }
    [[nodiscard]] QPointF onScreen(const QMouseEvent &event) const override
    {
        return PanelSurface::onScreen(event) + mouseOffset;
    }
    void openMenu(QMenu &, const QPoint &position) override
    {
        log.append(QStringLiteral("menu"));
        menu = position;
    }
    void showToolTip(QWidget &tip, const QRect &) override
    {
        log.append(qobject_cast<QLabel *>(&tip)->text());
    }

    int placements = 0;
    bool translucent = true;
    double opacity = 1;
    SurfacePlace last;
    QPainterPath outline;
    std::function<void()> outlined = [] {};
    bool hasKeyboard = false;
    bool givesKeyboard = true;
    bool passesClicks = true;
    QMargins bars;
    QPointF mouseOffset; // of where it says that mouse events have happened
    QPoint menu;
    QStringList log; // moves, menus and tool tips
};

} // namespace nubble
