#pragma once

#include <QAccessible>
#include <QHash>

#include <functional>

namespace nubble {

class ThreadView;

// Children that are made when they are asked for and go with their parent.
class AccessibleChildren {
public:
    AccessibleChildren() = default;
    Q_DISABLE_COPY_MOVE(AccessibleChildren)
    ~AccessibleChildren();

    [[nodiscard]] QAccessibleInterface *get(int index, const std::function<QAccessibleInterface *()> &make);

private:
    QHash<int, QAccessible::Id> m_ids;
};

// The row that it stands for; -1 when it is none.
[[nodiscard]] int rowOf(const QAccessibleInterface *child);
// -1 when it is none of them.
[[nodiscard]] int indexAmongChildren(const QAccessibleInterface &parent, const QAccessibleInterface *child);

// A row of a conversation, with its links and buttons: a paragraph, an item, a heading, a piece of code.
[[nodiscard]] QAccessibleInterface *makeRowAccessible(ThreadView &view, int row);
// What says that the reply which begins with that row has ended.
[[nodiscard]] QAccessibleInterface *makeAnnouncement(ThreadView &view, int row);

} // namespace nubble
