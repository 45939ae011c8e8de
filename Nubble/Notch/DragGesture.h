#pragma once

#include <QObject>
#include <QPointF>

#include <functional>
#include <optional>

class QMouseEvent;

namespace nubble {

// Dragging by the left button that starts on any of the watched widgets. A drag begins four pixels from where
// the button went down; the widget below then gets no click.
class DragGesture : public QObject {
    Q_OBJECT

public:
    using ToScreen = std::function<QPointF(const QMouseEvent &)>; // where an event has happened

    explicit DragGesture(ToScreen toScreen, QObject *parent = nullptr);

    void watch(QWidget *widget); // and its children

Q_SIGNALS:
    void began();
    void moved(QPointF screenPosition); // at every change of a drag
    void ended();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool follow(QObject *watched, const QMouseEvent &event);
    bool end(QObject *watched);

    ToScreen m_toScreen;
    std::optional<QPointF> m_start; // of a pressed button, on the screen
    bool m_dragging = false;
};

} // namespace nubble
