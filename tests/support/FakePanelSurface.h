#pragma once

#include <QWidget>

#include "Platform/PanelSurface.h"

namespace nubble {

// A plain window that remembers what was asked of it.
class FakePanelSurface : public PanelSurface {
public:
    explicit FakePanelSurface(QWidget &window) : m_window(window) { }

    void place(const QRect &frame) override
    {
        ++placements;
        m_window.setGeometry(frame);
    }
    void orderFront() override { m_window.show(); }
    void orderOut() override { m_window.hide(); }
    void setActiveRects(const QList<QRectF> &rects) override { activeRects = rects; }
    [[nodiscard]] bool isTranslucent() const override { return true; }
    void setOutline(const QPainterPath &path) override { outline = path; }
    void takeKeyboard() override
    {
        hasKeyboard = true;
        m_window.activateWindow();
    }
    void releaseKeyboard() override { hasKeyboard = false; }

    int placements = 0;
    QList<QRectF> activeRects;
    QPainterPath outline;
    bool hasKeyboard = false;

private:
    QWidget &m_window;
};

} // namespace nubble
