#include "Notch/DragGesture.h"

#include <QAbstractButton>
#include <QLineF>
#include <QMouseEvent>

namespace nubble {

namespace {

constexpr double minimumDistance = 4;

} // namespace

DragGesture::DragGesture(ToScreen toScreen, QObject *parent)
    : QObject(parent), m_toScreen(std::move(toScreen))
{
}

void DragGesture::watch(QWidget *widget)
{
    widget->installEventFilter(this);
    for (QWidget *child : widget->findChildren<QWidget *>())
        child->installEventFilter(this);
}

bool DragGesture::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // a second press soon after a click
        if (const auto *mouse = static_cast<QMouseEvent *>(event); mouse->button() == Qt::LeftButton)
            m_start = m_toScreen(*mouse);
        return false;
    case QEvent::MouseMove:
        return follow(watched, *static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        return static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton && end(watched);
    default:
        return false;
    }
}

bool DragGesture::follow(QObject *watched, const QMouseEvent &event)
{
    if (!m_start || !(event.buttons() & Qt::LeftButton))
        return false;
    const QPointF position = m_toScreen(event);
    if (!m_dragging && QLineF(*m_start, position).length() < minimumDistance)
        return false;
    if (!std::exchange(m_dragging, true))
        Q_EMIT began();
    if (auto *button = qobject_cast<QAbstractButton *>(watched))
        button->setDown(false);
    Q_EMIT moved(position);
    return true;
}

bool DragGesture::end(QObject *watched)
{
    const bool wasDragging = std::exchange(m_dragging, false);
    m_start.reset();
    if (!wasDragging)
        return false;
    if (auto *button = qobject_cast<QAbstractButton *>(watched))
        button->setDown(false);
    Q_EMIT ended();
    return true;
}

} // namespace nubble
