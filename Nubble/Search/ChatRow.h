#pragma once

#include <QStyledItemDelegate>

#include <functional>

#include "Search/ChatRecords.h"
#include "Thread/TextMatcher.h"

class QDateTime;

namespace nubble {

// What of a snippet is shown: from shortly before its first match on. Pure.
[[nodiscard]] QString excerpt(const QString &snippet, const TextMatcher &matcher);

// Draws a found chat in a list: title, the words around the first match, and where and when it was. The row
// that is selected or under the pointer has a button that opens the chat.
class ChatRow : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int height = 66; // five of them fill the window

    using HitOf = std::function<const ChatHit &(int row)>;
    using Now = std::function<QDateTime()>;

    ChatRow(HitOf hitOf, Now now, QObject *parent);

    void setMatcher(const TextMatcher &matcher) { m_matcher = matcher; }
    void setPointer(const QPoint &pointer) { m_pointer = pointer; } // in the list
    [[nodiscard]] static QRect openButton(const QRect &row);

    void paint(
        QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void drawButton(QPainter &painter, const QRect &row, const ChatHit &hit) const;
    void drawSnippet(QPainter &painter, const QRectF &line, const QString &snippet) const;
    void drawMeta(QPainter &painter, const QRectF &line, const ChatHit &hit) const;

    HitOf m_hitOf;
    Now m_now;
    TextMatcher m_matcher;
    QPoint m_pointer{-1, -1};
};

} // namespace nubble
