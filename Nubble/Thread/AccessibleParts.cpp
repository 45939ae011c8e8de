#include "Thread/AccessibleParts.h"

#include <QPointer>
#include <QTextDocument>
#include <QWindow>

#include <algorithm>

#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QRect onScreen(ThreadView &view, const QRect &inView)
{
    return {view.viewport()->mapToGlobal(inView.topLeft()), inView.size()};
}

QString describe(const ThreadMessage &message)
{
    if (message.kind == ThreadMessage::Kind::Reply)
        return u"Reply"_s;
    return message.caption.isEmpty() ? u"Question"_s : u"Question, with "_s + message.caption;
}

// Has no object of its own: it is found by its row, which may be gone.
class PartAccessible : public QAccessibleInterface {
public:
    PartAccessible(ThreadView &view, int row) : m_view(&view), m_row(row) { }

    [[nodiscard]] int row() const { return m_row; }
    [[nodiscard]] bool isValid() const override { return m_view && m_row < scene().rows().count(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override
    {
        return m_view ? m_view->window()->windowHandle() : nullptr;
    }
    void setText(QAccessible::Text, const QString &) override { }
    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(&view());
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override
    {
        return indexAmongChildren(*this, child);
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override
    {
        for (int i = 0; i < childCount(); ++i)
            if (child(i)->rect().contains(x, y))
                return child(i);
        return nullptr;
    }

protected:
    [[nodiscard]] ThreadView &view() const { return *m_view; }
    [[nodiscard]] ThreadScene &scene() const { return m_view->scene(); }
    [[nodiscard]] const ThreadLayout::Row &laid() const { return scene().layout().row(m_row); }
    [[nodiscard]] QAccessible::State visibility(const QRect &onScreenRect) const
    {
        QAccessible::State state;
        state.offscreen = !onScreen(view(), view().viewport()->rect()).intersects(onScreenRect);
        state.invisible = !view().isVisible();
        return state;
    }

private:
    QPointer<ThreadView> m_view;
    int m_row;
};

// A link or a button within a row.
class TargetAccessible : public PartAccessible, public QAccessibleActionInterface {
public:
    TargetAccessible(ThreadView &view, int row, int index, QAccessibleInterface *parent)
        : PartAccessible(view, row), m_index(index), m_parent(parent)
    {
    }

    [[nodiscard]] bool isValid() const override
    {
        return PartAccessible::isValid() && m_index < all().size();
    }
    [[nodiscard]] QAccessibleInterface *parent() const override { return m_parent; }
    [[nodiscard]] QAccessible::Role role() const override
    {
        return isLink() ? QAccessible::Link : QAccessible::Button;
    }
    [[nodiscard]] QRect rect() const override
    {
        QRect all;
        for (const QRect &each : ThreadTargets::rects(scene().layout(), target()))
            all |= each;
        return onScreen(view(), all.translated(0, scene().layout().yOf(row())));
    }
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = visibility(rect());
        state.focusable = true;
        state.focused = view().hasFocus() && scene().focused() == target();
        state.linked = isLink();
        return state;
    }
    [[nodiscard]] QString text(QAccessible::Text type) const override
    {
        if (type == QAccessible::Description && isLink())
            return shownLink(ThreadTargets::url(scene().layout(), target()));
        if (type != QAccessible::Name)
            return {};
        if (!isLink())
            return target().kind == ThreadTarget::Kind::CopyCode ? u"Copy code"_s : u"Copy reply"_s;
        const TextLink &link = laid().document->links().at(target().link);
        QTextCursor cursor(laid().document.get());
        cursor.setPosition(link.from);
        cursor.setPosition(link.to, QTextCursor::KeepAnchor);
        return cursor.selectedText();
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }
    void doAction(const QString &name) override
    {
        if (name == pressAction())
            return scene().activate(target());
        view().setFocus(Qt::OtherFocusReason);
        scene().focus(target());
    }

private:
    [[nodiscard]] QList<ThreadTarget> all() const
    {
        return ThreadTargets::ofRow(scene().rows(), scene().layout(), row());
    }
    [[nodiscard]] ThreadTarget target() const { return all().value(m_index); }
    [[nodiscard]] bool isLink() const { return target().kind == ThreadTarget::Kind::Link; }

    int m_index;
    QAccessibleInterface *m_parent;
};

// A paragraph, an item, a heading, a piece of code.
class RowAccessible : public PartAccessible, public QAccessibleTextInterface {
public:
    RowAccessible(ThreadView &view, int row) : PartAccessible(view, row) { }

    [[nodiscard]] int childCount() const override { return static_cast<int>(targets().size()); }
    [[nodiscard]] QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        return m_children.get(index, [=, this] {
            return new TargetAccessible(view(), row(), index, const_cast<RowAccessible *>(this));
        });
    }
    [[nodiscard]] QAccessible::Role role() const override
    {
        const Block &block = scene().rows().block(row());
        if (block.kind == Block::Kind::Heading)
            return QAccessible::Heading;
        return block.marker == Block::Marker::None ? QAccessible::Paragraph : QAccessible::ListItem;
    }
    [[nodiscard]] QRect rect() const override
    {
        return onScreen(
            view(), {0, scene().layout().yOf(row()), view().viewport()->width(), laid().box.height});
    }
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = visibility(rect());
        state.readOnly = true;
        state.multiLine = true;
        state.selectableText = true;
        return state;
    }
    [[nodiscard]] QString text(QAccessible::Text type) const override
    {
        if (type == QAccessible::Description)
            return describe(scene().rows().messageAt(row()).content);
        if (type != QAccessible::Name)
            return {};
        const int end = laid().document->lastPosition();
        return ThreadPositions::text(scene().rows(), scene().layout(), {{row(), 0}, {row(), end}});
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface *>(this) : nullptr;
    }

    void selection(int, int *start, int *end) const override
    {
        const TextRange range = scene().selection().inRow(row(), characterCount());
        *start = range.from;
        *end = range.to;
    }
    [[nodiscard]] int selectionCount() const override
    {
        const TextRange range = scene().selection().inRow(row(), characterCount());
        return range.from < range.to ? 1 : 0;
    }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int) override { scene().select({}); }
    void setSelection(int, int start, int end) override
    {
        const int last = characterCount();
        scene().select({{row(), std::clamp(start, 0, last)}, {row(), std::clamp(end, 0, last)}});
    }
    [[nodiscard]] int cursorPosition() const override
    {
        const ThreadPosition cursor = scene().selection().cursor;
        return cursor.row == row() ? cursor.offset : 0;
    }
    void setCursorPosition(int position) override { setSelection(0, position, position); }
    [[nodiscard]] QString text(int start, int end) const override
    {
        return laid().document->toPlainText().mid(start, end - start);
    }
    [[nodiscard]] int characterCount() const override { return laid().document->lastPosition(); }
    [[nodiscard]] QRect characterRect(int offset) const override
    {
        const QRect caret = ThreadPositions::caret(scene().layout(), {row(), offset});
        return onScreen(view(), caret.translated(0, scene().layout().yOf(row())));
    }
    [[nodiscard]] int offsetAtPoint(const QPoint &point) const override
    {
        const ThreadPosition position = scene().positionAt(view().viewport()->mapFromGlobal(point));
        return position.row == row() ? position.offset : -1;
    }
    void scrollToSubstring(int start, int) override
    {
        scene().reveal(row(), ThreadPositions::caret(scene().layout(), {row(), start}));
    }
    [[nodiscard]] QString attributes(int, int *start, int *end) const override
    {
        *start = 0;
        *end = characterCount();
        return {};
    }

private:
    [[nodiscard]] QList<ThreadTarget> targets() const
    {
        return ThreadTargets::ofRow(scene().rows(), scene().layout(), row());
    }

    mutable AccessibleChildren m_children;
};

// The reply that has ended last, as a message that appears: the bridge to the desktop knows no announcement.
class Announcement : public PartAccessible {
public:
    Announcement(ThreadView &view, int row) : PartAccessible(view, row) { }

    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Notification; }
    [[nodiscard]] QRect rect() const override { return onScreen(view(), view().viewport()->rect()); }
    [[nodiscard]] QAccessible::State state() const override { return visibility(rect()); }
    [[nodiscard]] QString text(QAccessible::Text type) const override
    {
        constexpr int mostRows = 40; // more than anybody listens to at once
        if (type != QAccessible::Name)
            return {};
        const int last = std::min(scene().rows().messageAt(row()).endRow, row() + mostRows) - 1;
        const int end = scene().layout().row(last).document->lastPosition();
        return ThreadPositions::text(scene().rows(), scene().layout(), {{row(), 0}, {last, end}});
    }
};

} // namespace

AccessibleChildren::~AccessibleChildren()
{
    for (const QAccessible::Id id : std::as_const(m_ids))
        QAccessible::deleteAccessibleInterface(id);
}

QAccessibleInterface *AccessibleChildren::get(int index, const std::function<QAccessibleInterface *()> &make)
{
    if (const auto known = m_ids.constFind(index); known != m_ids.constEnd())
        return QAccessible::accessibleInterface(*known);
    QAccessibleInterface *made = make();
    m_ids.insert(index, QAccessible::registerAccessibleInterface(made));
    return made;
}

int rowOf(const QAccessibleInterface *child)
{
    const auto *row = dynamic_cast<const RowAccessible *>(child);
    return row ? row->row() : -1;
}

int indexAmongChildren(const QAccessibleInterface &parent, const QAccessibleInterface *child)
{
    for (int i = 0; i < parent.childCount(); ++i)
        if (parent.child(i) == child)
            return i;
    return -1;
}

QAccessibleInterface *makeRowAccessible(ThreadView &view, int row)
{
    return new RowAccessible(view, row);
}

QAccessibleInterface *makeAnnouncement(ThreadView &view, int row)
{
    return new Announcement(view, row);
}

} // namespace nubble
