#pragma once

#include <QClipboard>
#include <QObject>
#include <QTimer>

#include <optional>

#include "Thread/ThreadLayout.h"
#include "Thread/ThreadRows.h"
#include "Thread/ThreadSelection.h"
#include "Thread/ThreadTargets.h"

class QPainter;

namespace nubble {

struct RowLook;

// A conversation as it is being read: its text, what of it is seen, and what the user does with it. No
// widget: the view hands on events and shows what this paints. Main thread only.
class ThreadScene : public QObject {
    Q_OBJECT

public:
    explicit ThreadScene(QObject *parent = nullptr);

    [[nodiscard]] const ThreadRows &rows() const { return m_rows; }
    [[nodiscard]] ThreadLayout &layout() { return m_layout; }

    void clear();
    void setRows(ThreadRows rows); // a conversation that is over: is shown from its start
    void append(const ThreadMessage &message);
    void appendText(QStringView text); // of a reply, is only stored until `takeIn()`
    void setText(const QString &text);
    void finishLast();
    void removeLast();
    void takeIn();

    [[nodiscard]] bool isLive() const { return m_isLive; } // may grow

    void setMatcher(const TextMatcher &matcher);
    void showMessage(int message);   // until something else is scrolled to, it stays in the middle
    void click(const QPoint &point); // makes that message the one that is copied
    [[nodiscard]] bool copy();       // what is marked, or else a message; false: there is neither
    void scrollPages(int pages);
    void reveal(int row, const QRect &rect); // of the row

    void setShown(bool shown); // what is not seen is not laid out
    void resize(QSize size);
    void arrange(); // behind any change of the layout
    void scrollBy(int pixels);
    void scrollTo(int value);
    void scrollToEnd();

    [[nodiscard]] const ThreadSelection &selection() const { return m_selection; }
    void select(const ThreadSelection &selection);
    void selectAll();
    void copySelection(QClipboard::Mode mode);
    [[nodiscard]] ThreadPosition positionAt(const QPoint &point);

    [[nodiscard]] std::optional<ThreadTarget> targetAt(const QPoint &point);
    [[nodiscard]] const std::optional<ThreadTarget> &hovered() const { return m_hovered; }
    [[nodiscard]] const std::optional<ThreadTarget> &focused() const { return m_focused; }
    [[nodiscard]] QString toolTipAt(const QPoint &point);
    void hover(const std::optional<QPoint> &point);
    void focus(const std::optional<ThreadTarget> &target); // and shows it
    [[nodiscard]] bool focusNext(int step);                // false: there is no further one
    void activate(const ThreadTarget &target);

    void paint(QPainter &painter, const QRect &area);

Q_SIGNALS:
    void changed(int y); // what is seen, from there down
    void linkActivated(const QUrl &url);
    void focusChanged();

private:
    void setLive(bool isLive);
    void holdState();
    void placeCurrent();
    [[nodiscard]] RowLook lookOf(int index, const ThreadLayout::Row &row) const;

    ThreadRows m_rows;
    ThreadLayout m_layout{m_rows};
    ThreadSelection m_selection;
    std::optional<ThreadTarget> m_hovered;
    std::optional<ThreadTarget> m_focused;
    std::optional<ThreadTarget> m_copied;
    int m_hoveredMessage = -1;
    int m_current = -1;      // message
    int m_clicked = -1;      // message
    bool m_isPlaced = false; // the current one, since nothing else has been scrolled to
    bool m_isLive = true;
    bool m_isShown = false;
    QTimer m_forgetCopied;
};

} // namespace nubble
