#pragma once

#include <QProxyStyle>

class QStyleOptionMenuItem;

namespace nubble {

// The desktop's style, with room for a second, smaller line in the entries of a menu. The style is to be
// owned by the menu.
class TwoLineMenuStyle : public QProxyStyle {
    Q_OBJECT

public:
    static constexpr QChar lineBreak = u'\n';

    [[nodiscard]] QSize sizeFromContents(
        ContentsType type, const QStyleOption *option, const QSize &size,
        const QWidget *widget) const override;
    void drawControl(
        ControlElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override;

private:
    void drawLine(
        const QStyleOptionMenuItem &item, const QString &text, const QFont &font, const QColor &color,
        const QRect &rect, QPainter *painter, const QWidget *widget) const;
};

} // namespace nubble
