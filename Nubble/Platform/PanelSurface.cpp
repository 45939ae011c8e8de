#include "Platform/PanelSurface.h"

#include <QMenu>
#include <QMouseEvent>

namespace nubble {

QPointF PanelSurface::onScreen(const QMouseEvent &event) const
{
    return event.globalPosition();
}

void PanelSurface::openMenu(QMenu &menu, const QPoint &position)
{
    menu.popup(m_window.mapToGlobal(position));
}

void PanelSurface::showToolTip(QWidget &tip, const QRect &frame)
{
    tip.setGeometry(frame.translated(m_window.mapToGlobal(QPoint())));
    tip.show();
}

} // namespace nubble
