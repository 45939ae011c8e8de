#pragma once

#include <QMenu>
#include <QPixmap>

#include <optional>

#include "Widgets/MenuEntry.h"

namespace nubble {

class ToolTips;
struct CardFrame;

// A menu made of plain values, on a small card with its shadow, which belongs to the window but takes no
// mouse. Main thread only.
class Menu : public QMenu {
    Q_OBJECT

public:
    // Who draws it: this program, or the desktop, whose entries have one line each.
    enum class Drawing { Own, Desktop };

    explicit Menu(QWidget *parent = nullptr);

    void setTranslucent(bool translucent); // without that it is cut to its card

    // Instead of what it had. What looks the same is left as it is: desktops know entries by identity.
    void setEntries(const QList<MenuEntry> &entries, Drawing drawing = Drawing::Own);

    // With a corner of its card at that point of the screen, where there is room for the card.
    void openAt(const QPoint &point);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    [[nodiscard]] Menu *above() const; // the one that it is opened from; may be none
    [[nodiscard]] CardFrame frame() const;
    [[nodiscard]] QPoint besideEntry() const;
    [[nodiscard]] bool passesOn(const QMouseEvent &event);
    void closeAll();
    void removeAll();
    void add(const MenuEntry &entry, Drawing drawing);
    QAction *actionFor(const QKeySequence &keys) const;

    QList<MenuEntry> m_entries;
    std::optional<QPoint> m_place; // where it was opened at
    bool m_translucent = true;
    QPixmap m_drawn;                // the card, drawn once per size
    ToolTips *m_toolTips = nullptr; // from when one is wanted
};

} // namespace nubble
