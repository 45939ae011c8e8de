#pragma once

#include <QPixmap>
#include <QWidget>

#include <optional>

namespace nubble {

struct CardFrame;

// The top-level widget of a floating window: a card with its content, and the shadow around it. Says when it
// is dragged by what is no control, and when the user wants it gone.
class FloatingFrame : public QWidget {
    Q_OBJECT

public:
    // The content keeps it free on both sides of what scrolls, whose fades would cover the card's line.
    static constexpr int rim = 2;

    explicit FloatingFrame(QWidget *content);

    void setCard(const QSize &card); // to be as large as that and the room for its shadow
    [[nodiscard]] CardFrame frame() const;
    void setTranslucent(bool translucent);

    // Whether translucent pixels show what is below in windows that open over one of its controls.
    [[nodiscard]] static bool isTranslucentOver(const QWidget &control);

Q_SIGNALS:
    void dragged(); // once for each press
    void dismissed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    [[nodiscard]] bool isBackground(const QPoint &position) const;

    bool m_translucent = true;
    QPixmap m_drawn; // what paintEvent shows; none while hidden
    std::optional<QPoint> m_pressed;
};

} // namespace nubble
