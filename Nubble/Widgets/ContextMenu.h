#pragma once

#include <QList>

class QMenu;
class QPoint;
class QWidget;

namespace nubble {

struct MenuEntry;

// Opens a menu about a control of a floating window, in the look of the panel's, at that point of the screen.
// It goes when it closes, or with the control.
void openContextMenu(QWidget &control, const QPoint &position, const QList<MenuEntry> &entries);

// The same with what the toolkit offers in a field, whose own menu is taken over.
void openContextMenu(QWidget &field, const QPoint &position, QMenu *standard);

} // namespace nubble
