#pragma once

#include <QWidget>

class QKeyEvent;

namespace nubble {

// The content of a window that has no menu with the editing commands: the keys for them reach whatever has
// the keyboard all the same, also those that the toolkit does not know on every desktop.
class KeyPanel : public QWidget {
    Q_OBJECT

public:
    // With `content` all over it, which gets the keyboard.
    explicit KeyPanel(QWidget *content, QWidget *parent = nullptr);

    // Whether the key stands for an editing command that somebody within has carried out.
    bool performKeyEquivalent(const QKeyEvent &event);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace nubble
