#include "Thread/ThreadAccessible.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>
#include <QTextDocument>

#include <algorithm>
#include <functional>

#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

using Maker = std::function<QAccessibleInterface *()>;

// Children that are made when they are asked for and go with their parent.
class Children {
public:
    Children() = default;
    Q_DISABLE_COPY_MOVE(Children)
    ~Children()
    {
        for (const QAccessible::Id id : std::as_const(m_ids))
            QAccessible::deleteAccessibleInterface(id);
    }

    QAccessibleInterface *get(int index, const Maker &make)
    {
        if (const auto known = m_ids.constFind(index); known != m_ids.constEnd())
            return QAccessible::accessibleInterface(*known);
        QAccessibleInterface *made = make();
        m_ids.insert(index, QAccessible::registerAccessibleInterface(made));
        return made;
    }

private:
    QHash<int, QAccessible::Id> m_ids;
};

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

    [[nodiscard]] bool isValid() const override { return m_view && m_row < scene().rows().count(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override
    {
        return m_view ? m_view->window()->windowHandle() : nullptr;
    }
    void setText(QAccessible::Text, const QString &) override { }

protected:
    [[nodiscard]] ThreadView &view() const { return *m_view; }
    [[nodiscard]] ThreadScene &scene() const { return m_view->scene(); }
    [[nodiscard]] const ThreadLayout::Row &laid() const { return scene().layout().row(m_row); }
    [[nodiscard]] int row() const { return m_row; }
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
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
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

    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(&view());
    }
    [[nodiscard]] int childCount() const override { return static_cast<int>(targets().size()); }
    [[nodiscard]] QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        return m_children.get(index, [=, this] {
            return new TargetAccessible(view(), row(), index, const_cast<RowAccessible *>(this));
        });
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override
    {
        for (int i = 0; i < childCount(); ++i)
            if (this->child(i) == child)
                return i;
        return -1;
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override
    {
        for (int i = 0; i < childCount(); ++i)
            if (child(i)->rect().contains(x, y))
                return child(i);
        return nullptr;
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
    void setSelection(int, int start, int end) override { scene().select({{row(), start}, {row(), end}}); }
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
        scene().layout().reveal(row(), ThreadPositions::caret(scene().layout(), {row(), start}));
        scene().arrange();
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

    mutable Children m_children;
};

// The reply that has ended last, as a message that appears: the bridge to the desktop knows no announcement.
class Announcement : public PartAccessible {
public:
    Announcement(ThreadView &view, int row) : PartAccessible(view, row) { }

    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(&view());
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Notification; }
    [[nodiscard]] QRect rect() const override { return onScreen(view(), view().viewport()->rect()); }
    [[nodiscard]] QAccessible::State state() const override { return visibility(rect()); }
    [[nodiscard]] QString text(QAccessible::Text type) const override
    {
        constexpr int mostRows = 40; // more than anybody listens to at once
        if (type != QAccessible::Name)
            return {};
        const int last = std::min(scene().rows().messageAt(row()).endRow(), row() + mostRows) - 1;
        const int end = scene().layout().row(last).document->lastPosition();
        return ThreadPositions::text(scene().rows(), scene().layout(), {{row(), 0}, {last, end}});
    }
};

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
        return m_children.get(index, [=, this] { return new RowAccessible(view(), index); });
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override
    {
        for (int i = 0; i < childCount(); ++i)
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
        m_announcement = QAccessible::registerAccessibleInterface(new Announcement(view(), row));
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

    mutable Children m_children;
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
    if (rows.messageCount() > 0 && !rows.message(rows.messageCount() - 1).blocks().empty())
        static_cast<ViewAccessible *>(QAccessible::queryAccessibleInterface(&view))
            ->announce(rows.message(rows.messageCount() - 1).firstRow);
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
