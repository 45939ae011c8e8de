#pragma once

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QWidget>

#include <functional>
#include <optional>

class QMouseEvent;

namespace nubble {

// Dragging by the left button that starts at the handle, a part of a widget, on whatever child is there. A
// drag begins four pixels from where the button went down; the child then gets no click. It ends with the
// button's release, or when there can be none any more: the widget is hidden, the mouse taken away, or the
// button up.
class DragGesture : public QObject {
    Q_OBJECT

public:
    using ToScreen = std::function<QPointF(const QMouseEvent &)>; // where an event has happened

    explicit DragGesture(ToScreen toScreen, QObject *parent = nullptr);

    void watch(QWidget *widget);          // with the children that it has
    void setHandle(const QRectF &handle); // in that widget's coordinates

Q_SIGNALS:
    void began();
    void moved(QPointF screenPosition); // at every change of a drag
    void ended();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void press(QObject *watched, const QMouseEvent &event);
    bool follow(QObject *watched, const QMouseEvent &event);
    bool end();

    ToScreen m_toScreen;
    QWidget *m_widget = nullptr;
    QRectF m_handle;
    QPointer<QWidget> m_pressed;
    std::optional<QPointF> m_start; // of the pressed button, on the screen
    bool m_dragging = false;
};

} // namespace nubble
