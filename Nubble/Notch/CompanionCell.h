#pragma once

#include <QAbstractButton>

#include "Widgets/HoverLift.h"

namespace nubble {

class NotchAction;
struct CellFrame;

// A companion of the ring: a round button with the number of what waits there, and a short text below it.
class CompanionCell : public QAbstractButton {
    Q_OBJECT

public:
    explicit CompanionCell(NotchAction &action, QWidget *parent = nullptr); // which outlives it

    void place(const CellFrame &frame);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();
    void drawBadge(QPainter &painter, double end) const; // no further than the cell's

    const NotchAction &m_action;
    QPointF m_center; // of the circle, in units, as the text
    QRectF m_textRect;
    HoverLift m_hover;
};

} // namespace nubble
