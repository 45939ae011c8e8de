#include "Tray/Menu.h"

#include <QKeyEvent>

#include "Tray/MenuStyle.h"

using namespace Qt::StringLiterals;

namespace nubble {

Menu::Menu(QWidget *parent) : QMenu(parent)
{
    auto *style = new MenuStyle;
    style->setParent(this);
    setStyle(style);
    setToolTipsVisible(true);
}

void Menu::setEntries(const QList<MenuEntry> &entries, Drawing drawing)
{
    clear();
    qDeleteAll(findChildren<Menu *>(Qt::FindDirectChildrenOnly));
    for (const MenuEntry &entry : entries)
        add(entry, drawing);
}

void Menu::add(const MenuEntry &entry, Drawing drawing)
{
    if (entry.title.isEmpty()) {
        addSeparator();
        return;
    }
    if (!entry.entries.isEmpty()) {
        auto *submenu = new Menu(this);
        submenu->setTitle(entry.title);
        submenu->setEntries(entry.entries, drawing);
        addMenu(submenu);
        return;
    }
    const QString parting = drawing == Drawing::Own ? QString(MenuStyle::lineBreak) : u" — "_s;
    QAction *action = addAction(entry.detail.isEmpty() ? entry.title : entry.title + parting + entry.detail);
    if (entry.action)
        connect(action, &QAction::triggered, this, entry.action);
    action->setCheckable(entry.checked.has_value());
    action->setChecked(entry.checked.value_or(false));
    action->setEnabled(entry.enabled);
    action->setToolTip(entry.toolTip);
    action->setShortcut(entry.shortcut);
}

// The toolkit shows the keys of a menu without a window, but does not obey them.
void Menu::keyPressEvent(QKeyEvent *event)
{
    const QKeySequence pressed(event->keyCombination());
    for (QAction *action : actions())
        if (action->isEnabled() && !action->shortcut().isEmpty() && action->shortcut() == pressed) {
            close();
            action->trigger();
            return;
        }
    QMenu::keyPressEvent(event);
}

} // namespace nubble
