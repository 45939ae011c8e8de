#pragma once

#include <QScrollBar>

namespace nubble {

// A slim rounded handle without a track; nothing while there is nothing to scroll.
class SlimScrollBar : public QScrollBar {
    Q_OBJECT

public:
    explicit SlimScrollBar(QWidget *parent = nullptr) : QScrollBar(Qt::Vertical, parent)
    {
        setContextMenuPolicy(Qt::NoContextMenu); // that of what it scrolls
    }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace nubble
