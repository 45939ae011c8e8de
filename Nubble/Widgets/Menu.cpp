#include "Widgets/Menu.h"

#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>

#include "Placement/PanelShapes.h"
#include "Placement/WindowPlacement.h"
#include "Platform/MainThread.h"
#include "Widgets/CardFrame.h"
#include "Widgets/MenuStyle.h"
#include "Widgets/ToolTips.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr double radius = 10;

// A file's name in it may hold anything: an ampersand would mark a key, a tab begin another column.
QString plainText(const QString &text)
{
    return text.simplified().replace(u'&', u"&&"_s);
}

} // namespace

Menu::Menu(QWidget *parent) : QMenu(parent)
{
    auto *style = new MenuStyle;
    style->setParent(this);
    setStyle(style);
    setAttribute(Qt::WA_TranslucentBackground);
    setTranslucent(true);
}

void Menu::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    setContentsMargins(translucent ? cardShadowRoom : QMargins());
    for (Menu *submenu : findChildren<Menu *>(Qt::FindDirectChildrenOnly))
        submenu->setTranslucent(translucent);
}

void Menu::setEntries(const QList<MenuEntry> &entries, Drawing drawing)
{
    assertMainThread("Nubble/Widgets/Menu");
    if (!isEmpty() && lookAlike(entries, m_entries))
        return;
    m_entries = entries;
    removeAll();
    for (const MenuEntry &entry : entries)
        add(entry, drawing);
}

// Submenus are emptied first, for they would leave behind what desktops were told about their entries.
void Menu::removeAll()
{
    for (Menu *submenu : findChildren<Menu *>(Qt::FindDirectChildrenOnly)) {
        submenu->removeAll();
        delete submenu;
    }
    clear();
}

void Menu::add(const MenuEntry &entry, Drawing drawing)
{
    if (entry.title.isEmpty()) {
        addSeparator();
        return;
    }
    if (!entry.entries.isEmpty()) {
        auto *submenu = new Menu(this);
        submenu->setTranslucent(m_translucent);
        submenu->setTitle(plainText(entry.title));
        submenu->setEntries(entry.entries, drawing);
        addMenu(submenu);
        return;
    }
    const int widest = drawing == Drawing::Own ? 560 : 1200;
    const QString detail = fontMetrics().elidedText(entry.detail, Qt::ElideMiddle, widest);
    const QString separator = drawing == Drawing::Own ? QString(MenuStyle::lineBreak) : u" — "_s;
    QAction *action =
        addAction(plainText(entry.title) + (detail.isEmpty() ? QString() : separator + plainText(detail)));
    action->setCheckable(entry.checked.has_value());
    action->setChecked(entry.checked.value_or(false));
    connect(action, &QAction::triggered, this, [action, entry] {
        action->setChecked(entry.checked.value_or(false)); // only what it stands for changes it
        if (entry.action)
            entry.action();
    });
    action->setEnabled(entry.enabled);
    action->setToolTip(detail == entry.detail ? entry.toolTip : entry.toolTip + u'\n' + entry.detail);
    action->setShortcut(entry.shortcut);
}

void Menu::openAt(const QPoint &point)
{
    ensurePolished();
    const QScreen *at = QGuiApplication::screenAt(point);
    const QRect room = (at ? at : screen())->availableGeometry();
    QRect card(point, sizeHint().shrunkBy(contentsMargins()));
    if (card.right() > room.right())
        card.moveRight(point.x());
    if (card.bottom() > room.bottom())
        card.moveBottom(point.y());
    const QMargins shadow = contentsMargins();
    m_place = keptWithin(card, room).topLeft() - QPoint(shadow.left(), shadow.top());
    popup(*m_place);
}

QAction *Menu::actionFor(const QKeySequence &keys) const
{
    for (QAction *action : actions())
        if (action->isEnabled() && !action->shortcut().isEmpty() && action->shortcut() == keys)
            return action;
    return above() ? above()->actionFor(keys) : nullptr;
}

Menu *Menu::above() const
{
    return qobject_cast<Menu *>(parentWidget());
}

CardFrame Menu::frame() const
{
    QPainterPath outline;
    outline.addRoundedRect(contentsRect(), radius, radius);
    return {.outline = outline, .isOpaque = true};
}

void Menu::resizeEvent(QResizeEvent *event)
{
    m_drawn = {};
    if (m_translucent)
        clearMask();
    else
        setMask(frame().region(size()));
    QMenu::resizeEvent(event);
}

void Menu::paintEvent(QPaintEvent *event)
{
    if (m_drawn.isNull() || m_drawn.devicePixelRatio() != devicePixelRatioF())
        m_drawn = frame().drawn(size(), devicePixelRatioF(), m_translucent);
    QPainter(this).drawPixmap(0, 0, m_drawn);
    QMenu::paintEvent(event);
}

// The toolkit would keep the shadow on the screen rather than the card where it belongs.
void Menu::showEvent(QShowEvent *event)
{
    if (above())
        move(besideEntry());
    else if (m_place)
        move(*m_place);
    QMenu::showEvent(event);
}

// Its first entry at the height of the one that it belongs to, on the right if there is room.
QPoint Menu::besideEntry() const
{
    const QPoint origin = above()->mapToGlobal(QPoint());
    const QRect from = above()->contentsRect().translated(origin);
    const QRect entry = above()->actionGeometry(menuAction()).translated(origin);
    constexpr int margin = MenuStyle::inset;
    const QRect room = above()->screen()->geometry().adjusted(margin, margin, -margin, -margin);
    QRect card({}, contentsRect().size());
    card.moveTopLeft({from.right() + 1 - margin, entry.top() - margin});
    if (card.right() > room.right())
        card.moveRight(from.left() - 1 + margin);
    return keptWithin(card, room).topLeft() - contentsRect().topLeft();
}

// What happens on the shadow concerns the menu below it, or closes all as anywhere beside them.
bool Menu::passesOn(const QMouseEvent &event)
{
    if (contentsRect().contains(event.position().toPoint()))
        return false;
    if (above()) {
        QMouseEvent passed(
            event.type(), above()->mapFromGlobal(event.globalPosition()), event.globalPosition(),
            event.button(), event.buttons(), event.modifiers(), event.pointingDevice());
        QCoreApplication::sendEvent(above(), &passed);
        if (above()->activeAction() != menuAction())
            close(); // by itself it stays as long as the pointer is in its window
        return true;
    }
    if (event.type() == QEvent::MouseButtonPress && rect().contains(event.position().toPoint())) {
        closeAll();
        return true;
    }
    return false;
}

void Menu::closeAll()
{
    for (Menu *open = this; open; open = open->above())
        open->close();
}

bool Menu::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
        return passesOn(static_cast<QMouseEvent &>(*event)) || QMenu::event(event);
    case QEvent::ToolTip:
        break;
    default:
        return QMenu::event(event);
    }
    const QPoint point = static_cast<QHelpEvent *>(event)->pos();
    QAction *action = actionAt(point);
    if (m_entries.value(actions().indexOf(action)).toolTip.isEmpty())
        return true;
    if (!m_toolTips) {
        m_toolTips = new ToolTips(*this);
        m_toolTips->setTranslucent(m_translucent);
        m_toolTips->keepFrom(Qt::LeftEdge); // beside the menu rather than over its next entry
    }
    ToolTips::show(*this, action->toolTip(), actionGeometry(action));
    return true;
}

// The toolkit shows the keys of a menu without a window, but does not obey them.
void Menu::keyPressEvent(QKeyEvent *event)
{
    QAction *action = actionFor(event->keyCombination());
    if (!action) {
        QMenu::keyPressEvent(event);
        return;
    }
    closeAll();
    action->trigger();
}

} // namespace nubble
