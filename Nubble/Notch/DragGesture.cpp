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
    m_widget = widget;
    widget->installEventFilter(this);
    for (QWidget *child : widget->findChildren<QWidget *>())
        child->installEventFilter(this);
}

void DragGesture::setHandle(const QRectF &handle)
{
    m_handle = handle;
}

bool DragGesture::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // a second press soon after a click
        press(watched, *static_cast<QMouseEvent *>(event));
        return false;
    case QEvent::MouseMove:
        return follow(watched, *static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        return static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton && end();
    case QEvent::Enter: // what was missed while the mouse was someone else's
        if (!(static_cast<QEnterEvent *>(event)->buttons() & Qt::LeftButton))
            end();
        return false;
    case QEvent::Hide:
    case QEvent::UngrabMouse:
        if (watched == m_widget || watched == m_pressed)
            end();
        return false;
    default:
        return false;
    }
}

void DragGesture::press(QObject *watched, const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return;
    end();
    auto *pressed = static_cast<QWidget *>(watched);
    if (!m_handle.contains(pressed->mapTo(m_widget, event.position())))
        return;
    m_pressed = pressed;
    m_start = m_toScreen(event);
}

bool DragGesture::follow(QObject *watched, const QMouseEvent &event)
{
    if (!(event.buttons() & Qt::LeftButton))
        return end();
    if (!m_start || watched != m_pressed)
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

// Whether there was a drag.
bool DragGesture::end()
{
    m_start.reset();
    const QPointer<QWidget> pressed = std::exchange(m_pressed, nullptr);
    if (!std::exchange(m_dragging, false))
        return false;
    if (auto *button = qobject_cast<QAbstractButton *>(pressed.data()))
        button->setDown(false);
    Q_EMIT ended();
    return true;
}

} // namespace nubble
