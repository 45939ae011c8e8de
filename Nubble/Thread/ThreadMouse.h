#pragma once

#include <QElapsedTimer>
#include <QPoint>
#include <QTextCursor>
#include <QTimer>

#include <optional>

#include "Thread/ThreadSelection.h"
#include "Thread/ThreadTargets.h"

class QMouseEvent;

namespace nubble {

class ThreadScene;

// What the mouse does in a conversation: marks text by characters, words and paragraphs, scrolls while it is
// drawn over an edge, and activates what is pressed and released without being dragged.
class ThreadMouse : public QObject {
    Q_OBJECT

public:
    explicit ThreadMouse(ThreadScene &scene);

    void press(const QMouseEvent &event);
    void pressTwice(const QMouseEvent &event);
    void move(const QMouseEvent &event);
    void release(const QMouseEvent &event);
    void cancel(); // a release will not come

private:
    void begin(const QPoint &point, QTextCursor::SelectionType unit);
    void drawTo(const QPoint &point);
    void scroll();

    ThreadScene &m_scene;
    std::optional<ThreadTarget> m_pressed;
    bool m_isMarking = false;
    QTextCursor::SelectionType m_unit = QTextCursor::Document; // which stands for a character
    ThreadSelection m_first;                                   // the unit that was pressed
    QPoint m_start;
    QPoint m_last;
    QElapsedTimer m_sinceDouble;
    QTimer m_scrolling;
};

} // namespace nubble
