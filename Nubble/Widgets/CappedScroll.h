#pragma once

#include <QScrollArea>

namespace nubble {

// As tall as its content, up to a limit beyond which the content scrolls.
class CappedScroll : public QScrollArea {
    Q_OBJECT

public:
    CappedScroll(QWidget *content, int maxHeight, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    void fit(); // to the content; by itself where that has a layout

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    int m_maxHeight;
};

} // namespace nubble
