#pragma once

#include <QMenu>

#include "Tray/MenuEntry.h"

namespace nubble {

class ToolTips;

// A menu made of plain values. Main thread only.
class Menu : public QMenu {
    Q_OBJECT

public:
    // Who draws it: this program, or the desktop, whose entries have one line each.
    enum class Drawing { Own, Desktop };

    explicit Menu(QWidget *parent = nullptr);

    // Instead of what it had. What looks the same is left as it is: desktops know entries by identity.
    void setEntries(const QList<MenuEntry> &entries, Drawing drawing = Drawing::Own);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void removeAll();
    void add(const MenuEntry &entry, Drawing drawing);
    QAction *actionFor(const QKeySequence &keys) const;

    QList<MenuEntry> m_entries;
    ToolTips *m_toolTips = nullptr; // from when one is wanted
};

} // namespace nubble
