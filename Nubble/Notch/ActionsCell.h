#pragma once

#include <QList>
#include <QWidget>

#include "Placement/NotchEdge.h"
#include "Shell/Addon.h"

namespace nubble {

class NotchButton;

// The buttons of the active add-ons, one beside the other along the edge.
class ActionsCell : public QWidget {
    Q_OBJECT

public:
    explicit ActionsCell(const QList<Addon> &actions, QWidget *parent = nullptr);

    // Lines the buttons up around `center`, in the parent's coordinates.
    void placeAround(const QPointF &center, NotchEdge edge);

Q_SIGNALS:
    void triggered(nubble::Addon addon);

private:
    QList<NotchButton *> m_buttons;
};

} // namespace nubble
