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

// A conversation as it is being read: its text, what of it is seen, and what the user does with it. No
// widget: the view hands on events and shows what this paints. Main thread only.
class ThreadScene : public QObject {
    Q_OBJECT

public:
    explicit ThreadScene(QObject *parent = nullptr);

    [[nodiscard]] const ThreadRows &rows() const { return m_rows; }
    [[nodiscard]] ThreadLayout &layout() { return m_layout; }

    void clear();
    void append(const ThreadMessage &message);
    void appendText(QStringView text); // of a reply, is only stored until `takeIn()`
    void setText(const QString &text);
    void finishLast();
    void removeLast();
    void takeIn();

    void setShown(bool shown); // what is not seen is not laid out
    void arrange();            // behind any change of the layout
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
    void holdState();

    ThreadRows m_rows;
    ThreadLayout m_layout{m_rows};
    ThreadSelection m_selection;
    std::optional<ThreadTarget> m_hovered;
    std::optional<ThreadTarget> m_focused;
    std::optional<ThreadTarget> m_copied;
    int m_hoveredMessage = -1;
    bool m_isShown = false;
    QTimer m_forgetCopied;
};

} // namespace nubble
