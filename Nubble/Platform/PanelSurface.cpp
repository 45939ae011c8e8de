#include "Platform/PanelSurface.h"

#include <QMenu>
#include <QMouseEvent>

namespace nubble {

QPointF PanelSurface::onScreen(const QMouseEvent &event) const
{
    return event.globalPosition();
}

void PanelSurface::setOpacity(double opacity)
{
    m_window.setWindowOpacity(opacity);
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

void PanelSurface::setVeil(Veil veil, bool there)
{
    const bool before = isObservable();
    m_veils.setFlag(veil, there);
    if (isObservable() != before)
        Q_EMIT observableChanged();
}

} // namespace nubble
