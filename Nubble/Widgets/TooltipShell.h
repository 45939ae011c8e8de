#pragma once

#include <QWidget>

#include "Placement/NotchEdge.h"
#include "Widgets/CardFrame.h"

namespace nubble {

// The frame of an open card: near-black, rounded, with a tail that points to the body, and a soft shadow
// around it. As large as its content and the room for the shadow around it, which holds the tail, too.
class TooltipShell : public QWidget {
    Q_OBJECT

public:
    TooltipShell(QWidget *content, NotchEdge edge, bool translucent, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QRect cardRect() const;       // the card alone
    [[nodiscard]] QPainterPath outline() const; // of card and tail, in the parent's coordinates
    void setTranslucent(bool translucent);
    void setTail(double along, double length); // from the start of the side that faces the body

Q_SIGNALS:
    void contentResized();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    [[nodiscard]] CardFrame frame() const; // in units
    [[nodiscard]] QMargins shadowRoom() const;

    QWidget *m_content;
    NotchEdge m_edge;
    bool m_translucent;
    double m_tailAlong = 0;
    double m_tailLength = 0;
    QPixmap m_drawn; // what paintEvent shows, drawn once per size
};

} // namespace nubble
