#pragma once

#include <QList>
#include <QWidget>

#include "Placement/NotchEdge.h"

namespace nubble {

class NotchAction;
class NotchButton;

// The buttons of the panel's actions, one beside the other along the edge. They follow their actions' looks.
class ActionsCell : public QWidget {
    Q_OBJECT

public:
    explicit ActionsCell(const QList<NotchAction *> &actions, QWidget *parent = nullptr);

    // `areas` are what the buttons may be touched in, `center` is where the line of them stands, both in the
    // parent's coordinates.
    void place(const QList<QRectF> &areas, const QPointF &center, NotchEdge edge);
    void setMotionReduced(bool reduced);

private:
    void add(NotchAction &action);
    void follow();

    const QList<NotchAction *> m_actions;
    QList<NotchButton *> m_buttons; // theirs
    bool m_motionReduced = false;
};

} // namespace nubble
