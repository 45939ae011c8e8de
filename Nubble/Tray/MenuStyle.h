#pragma once

#include <QProxyStyle>

class QStyleOptionMenuItem;

namespace nubble {

// The desktop's style for a menu, with room for a second, smaller line in the entries, plain check marks, and
// separators that are seen on a dark ground. To be owned by the menu.
class MenuStyle : public QProxyStyle {
    Q_OBJECT

public:
    static constexpr QChar lineBreak = u'\n';

    [[nodiscard]] QSize sizeFromContents(
        ContentsType type, const QStyleOption *option, const QSize &size,
        const QWidget *widget) const override;
    [[nodiscard]] int styleHint(
        StyleHint hint, const QStyleOption *option, const QWidget *widget,
        QStyleHintReturn *returned) const override;
    void drawPrimitive(
        PrimitiveElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override;
    void drawControl(
        ControlElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override;

private:
    void drawTwoLines(const QStyleOptionMenuItem &item, QPainter *painter, const QWidget *widget) const;
};

} // namespace nubble
