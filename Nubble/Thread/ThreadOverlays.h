#pragma once

#include "Widgets/NotchButton.h"

namespace nubble {

// What lies above a conversation's text.

// Leads to its end; filled, for there is text below it.
class JumpButton : public NotchButton {
    Q_OBJECT

public:
    explicit JumpButton(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
};

// Around all of it while it has the keyboard as a whole; takes no clicks. Hidden at first.
class FocusRing : public QWidget {
    Q_OBJECT

public:
    explicit FocusRing(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace nubble
