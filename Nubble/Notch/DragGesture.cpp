#include "Notch/DragGesture.h"

#include <QAbstractButton>
#include <QLineF>
#include <QMouseEvent>

namespace nubble {

namespace {

constexpr double minimumDistance = 4;

} // namespace

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
            m_start = mouse->globalPosition();
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
    if (!m_dragging && QLineF(*m_start, event.globalPosition()).length() < minimumDistance)
        return false;
    m_dragging = true;
    if (auto *button = qobject_cast<QAbstractButton *>(watched))
        button->setDown(false);
    Q_EMIT moved(event.globalPosition());
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
