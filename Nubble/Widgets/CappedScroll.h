#pragma once

#include <QScrollArea>

namespace nubble {

class SlimScrollBar;

// As tall as its content, up to a limit beyond which the content scrolls and fades into the card at both
// ends. The scroll bar stands in the margin that its parent keeps on the right. Hidden only without content.
class CappedScroll : public QScrollArea {
    Q_OBJECT

public:
    CappedScroll(QWidget *content, int maxHeight, QWidget *parent);

    [[nodiscard]] QSize sizeHint() const override;
    void fit(); // to the content; by itself where that has a layout

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void followScrolling();

    int m_maxHeight;
    SlimScrollBar *m_bar;
};

} // namespace nubble
