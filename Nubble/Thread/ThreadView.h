#pragma once

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include "Thread/ThreadMessage.h"

namespace nubble {

class FocusRing;
class JumpButton;
class TextMatcher;
class ThreadMouse;
class ThreadRows;
class ThreadScene;

// A conversation: questions as bubbles of plain text, replies as Markdown that may still be arriving. It
// follows the end until the user scrolls up. What a text says is foreign: nothing is loaded or opened for it,
// links are only told of. Cost follows what is seen, not what there is. Transparent; main thread only.
class ThreadView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit ThreadView(QWidget *parent = nullptr);
    ~ThreadView() override;

    void clear();
    void append(const ThreadMessage &message); // goes to the end when it is a question
    void appendText(QStringView text);         // to the last message; painted at most once a frame
    void setText(const QString &text);         // of the last message; what is the same is kept as it is shown
    void finishLast(); // the reply has ended: is announced to assistive technology, can be copied as a whole
    void removeLast();

    // A conversation that is over, instead of what is shown; read from its top on.
    void setRows(ThreadRows rows);
    void setMatcher(const TextMatcher &matcher); // what is lit wherever it stands
    // Makes it the current one, whose matches are lit most: the first of them, or else its beginning, comes
    // to the middle, and stays there until something else is scrolled to.
    void showMessage(int message);
    // What is marked, else the text of the message that was clicked or shown last; false: there is nothing.
    bool copy();
    void scrollPages(int pages); // down, or up

    // Scrolls with the text, below the last message, as tall as it wants to be; null for none. The one before
    // is hidden.
    void setFooter(QWidget *footer);
    void scrollToEnd();

    [[nodiscard]] ThreadScene &scene() { return *m_scene; }

Q_SIGNALS:
    void linkActivated(const QUrl &url); // clicked, or by keyboard; http, https or mailto only

protected:
    bool viewportEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void connectScene();
    void takeInSoon();
    void takeInNow();
    void showChange(int y);
    void placeFooter();
    void placeJump();
    [[nodiscard]] int barWidth() const;

    ThreadScene *m_scene;
    ThreadMouse *m_mouse;
    JumpButton *m_jump;
    FocusRing *m_ring;
    QPointer<QWidget> m_footer;
    QTimer m_frame;
    QElapsedTimer m_sinceFrame;
    bool m_isSyncing = false; // the scroll bar is being told, not asked
};

} // namespace nubble
