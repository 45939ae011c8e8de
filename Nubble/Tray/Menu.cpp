#include "Tray/Menu.h"

#include <QHelpEvent>
#include <QKeyEvent>

#include "Platform/MainThread.h"
#include "Tray/MenuStyle.h"
#include "Widgets/ToolTips.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

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
}

void Menu::setEntries(const QList<MenuEntry> &entries, Drawing drawing)
{
    assertMainThread("Nubble/Tray/Menu");
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

QAction *Menu::actionFor(const QKeySequence &keys) const
{
    for (QAction *action : actions())
        if (action->isEnabled() && !action->shortcut().isEmpty() && action->shortcut() == keys)
            return action;
    const auto *above = qobject_cast<Menu *>(parentWidget());
    return above ? above->actionFor(keys) : nullptr;
}

bool Menu::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QMenu::event(event);
    const QPoint point = static_cast<QHelpEvent *>(event)->pos();
    QAction *action = actionAt(point);
    const qsizetype entry = actions().indexOf(action);
    if (entry < 0 || m_entries.at(entry).toolTip.isEmpty())
        return true;
    if (!m_toolTips) {
        m_toolTips = new ToolTips(*this);
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
    for (QMenu *open = this; open; open = qobject_cast<Menu *>(open->parentWidget()))
        open->close();
    action->trigger();
}

} // namespace nubble
