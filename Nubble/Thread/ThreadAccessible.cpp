#include "Thread/ThreadAccessible.h"

#include <QAccessibleWidget>

#include "Thread/AccessibleParts.h"
#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"

namespace nubble {

namespace {

class ViewAccessible : public QAccessibleWidget {
public:
    explicit ViewAccessible(ThreadView *view) : QAccessibleWidget(view, QAccessible::Document) { }
    Q_DISABLE_COPY_MOVE(ViewAccessible)
    ~ViewAccessible() override
    {
        if (m_announcement != 0)
            QAccessible::deleteAccessibleInterface(m_announcement);
    }

    [[nodiscard]] int childCount() const override
    {
        return rows() + static_cast<int>(widgets().size()) + (announcement() ? 1 : 0);
    }
    [[nodiscard]] QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        if (announcement() && index + 1 == childCount())
            return announcement();
        if (index >= rows())
            return QAccessible::queryAccessibleInterface(widgets().at(index - rows()));
        return m_children.get(index, [=, this] { return makeRowAccessible(view(), index); });
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override
    {
        const int row = rowOf(child); // so that asking about one makes no others
        if (row >= 0 && this->child(row) == child)
            return row;
        for (int i = rows(); i < childCount(); ++i)
            if (this->child(i) == child)
                return i;
        return -1;
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override
    {
        const QPoint point = view().viewport()->mapFromGlobal(QPoint(x, y));
        if (!view().viewport()->rect().contains(point))
            return nullptr;
        return child(scene().layout().rowAt(point.y()));
    }
    [[nodiscard]] QAccessibleInterface *focusChild() const override
    {
        const auto &focused = scene().focused();
        if (!view().hasFocus() || !focused)
            return nullptr;
        const auto all = ThreadTargets::ofRow(scene().rows(), scene().layout(), focused->row);
        return child(focused->row)->child(static_cast<int>(all.indexOf(*focused)));
    }

    void announce(int row)
    {
        if (m_announcement != 0)
            QAccessible::deleteAccessibleInterface(m_announcement);
        m_announcement = QAccessible::registerAccessibleInterface(makeAnnouncement(view(), row));
        QAccessibleEvent event(announcement(), QAccessible::ObjectShow);
        QAccessible::updateAccessibility(&event);
    }

private:
    [[nodiscard]] QAccessibleInterface *announcement() const
    {
        QAccessibleInterface *known = QAccessible::accessibleInterface(m_announcement);
        return known && known->isValid() ? known : nullptr;
    }
    [[nodiscard]] ThreadView &view() const { return *static_cast<ThreadView *>(widget()); }
    [[nodiscard]] ThreadScene &scene() const { return view().scene(); }
    [[nodiscard]] int rows() const { return scene().rows().count(); }
    // The footer and the button that goes to the end.
    [[nodiscard]] QList<QWidget *> widgets() const
    {
        QList<QWidget *> shown;
        const auto buttons = view().findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        for (QWidget *each : buttons)
            if (each->isVisible() && each->focusPolicy() != Qt::NoFocus && each != view().viewport())
                shown.append(each);
        const auto below = view().viewport()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        for (QWidget *each : below)
            if (each->isVisible())
                shown.append(each);
        return shown;
    }

    mutable AccessibleChildren m_children;
    QAccessible::Id m_announcement = 0;
};

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *view = qobject_cast<ThreadView *>(object);
    return view ? new ViewAccessible(view) : nullptr;
}

} // namespace

void installThreadAccessibility()
{
    QAccessible::installFactory(make); // which is remembered once
}

void announceLast(ThreadView &view)
{
    const ThreadRows &rows = view.scene().rows();
    if (rows.messageCount() == 0)
        return;
    const ThreadRows::Message &last = rows.message(rows.messageCount() - 1);
    if (last.firstRow < last.endRow)
        static_cast<ViewAccessible *>(QAccessible::queryAccessibleInterface(&view))->announce(last.firstRow);
}

void tellFocus(ThreadView &view)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleInterface *document = QAccessible::queryAccessibleInterface(&view);
    QAccessibleInterface *focused = document->focusChild();
    QAccessibleEvent event(focused ? focused : document, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

} // namespace nubble
