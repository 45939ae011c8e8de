#pragma once

#include <QProxyStyle>

class QStyleOptionMenuItem;

namespace nubble {

// How the entries of a menu are laid out and drawn: with room for a second, smaller line, on the frame that
// the menu draws. To be owned by the menu. Lengths are device-independent pixels.
class MenuStyle : public QProxyStyle {
    Q_OBJECT

public:
    static constexpr QChar lineBreak = u'\n';
    static constexpr int inset = 4; // of the entries, from the frame

    MenuStyle();

    [[nodiscard]] QSize sizeFromContents(
        ContentsType type, const QStyleOption *option, const QSize &size,
        const QWidget *widget) const override;
    [[nodiscard]] int pixelMetric(
        PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    void drawPrimitive(
        PrimitiveElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override;
    void drawControl(
        ControlElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override;
};

} // namespace nubble
