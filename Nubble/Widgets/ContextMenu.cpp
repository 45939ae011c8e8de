#include "Widgets/ContextMenu.h"

#include "Widgets/FloatingFrame.h"
#include "Widgets/Menu.h"

namespace nubble {

namespace {

Menu &menuOver(QWidget &control)
{
    auto *menu = new Menu(&control);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setTranslucent(FloatingFrame::isTranslucentOver(control));
    return *menu;
}

} // namespace

void openContextMenu(QWidget &control, const QPoint &position, const QList<MenuEntry> &entries)
{
    Menu &menu = menuOver(control);
    menu.setEntries(entries);
    menu.openAt(position);
}

void openContextMenu(QWidget &field, const QPoint &position, QMenu *standard)
{
    Menu &menu = menuOver(field);
    standard->setParent(&menu, Qt::Popup); // its actions go with it
    menu.addActions(standard->actions());
    menu.openAt(position);
}

} // namespace nubble
