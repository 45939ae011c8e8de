#include "Tray/MenuStyle.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionMenuItem>

namespace nubble {

namespace {

const QStyleOptionMenuItem *twoLineItem(const QStyleOption *option)
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    return item && item->text.contains(MenuStyle::lineBreak) ? item : nullptr;
}

const QStyleOptionMenuItem *separator(const QStyleOption *option)
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    return item && item->menuItemType == QStyleOptionMenuItem::Separator ? item : nullptr;
}

QFont detailFont(QFont font)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(font.pixelSize() * 11 / 13);
    else
        font.setPointSizeF(font.pointSizeF() * 11 / 13);
    return font;
}

QString title(const QStyleOptionMenuItem &item)
{
    return item.text.section(MenuStyle::lineBreak, 0, 0);
}

QString detail(const QStyleOptionMenuItem &item)
{
    return item.text.section(MenuStyle::lineBreak, 1);
}

int lineWidth(const QFont &font, const QString &text)
{
    return QFontMetrics(font).size(Qt::TextSingleLine | Qt::TextShowMnemonic, text).width();
}

QColor dimmed(QColor color, double opacity)
{
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QColor textColor(const QStyleOption &option)
{
    if (!(option.state & QStyle::State_Enabled))
        return option.palette.color(QPalette::Disabled, QPalette::Text);
    return option.palette.color(
        option.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text);
}

void setTextColor(QStyleOptionMenuItem &item, const QColor &color)
{
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        item.palette.setColor(role, color);
}

void drawCheckMark(QPainter &painter, const QRectF &box, const QColor &color)
{
    const double side = std::min(box.width(), box.height());
    QPainterPath mark({-0.32, 0.02});
    mark.lineTo(-0.09, 0.25);
    mark.lineTo(0.33, -0.26);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.center());
    painter.scale(side, side);
    painter.strokePath(mark, QPen(color, 0.13, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.restore();
}

} // namespace

QSize MenuStyle::sizeFromContents(
    ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const
{
    const auto *item = type == CT_MenuItem ? twoLineItem(option) : nullptr;
    if (!item)
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    const QFont small = detailFont(item->font);
    QStyleOptionMenuItem oneLine(*item);
    oneLine.text = title(*item);
    const int width = std::max(lineWidth(item->font, oneLine.text), lineWidth(small, detail(*item)));
    const QSize base = QProxyStyle::sizeFromContents(type, &oneLine, {width, size.height()}, widget);
    return {base.width(), base.height() + QFontMetrics(small).height()};
}

int MenuStyle::styleHint(
    StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returned) const
{
    return hint == SH_EtchDisabledText ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
}

void MenuStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    if (element != PE_IndicatorCheckBox && element != PE_IndicatorMenuCheckMark)
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    else if (option->state & State_On)
        drawCheckMark(*painter, option->rect, textColor(*option));
}

void MenuStyle::drawControl(
    ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    if (element == CE_MenuItem && separator(option)) {
        const QRect line(option->rect.left() + 8, option->rect.center().y(), option->rect.width() - 16, 1);
        painter->fillRect(line, dimmed(option->palette.color(QPalette::Text), 0.14));
    } else if (const auto *item = element == CE_MenuItem ? twoLineItem(option) : nullptr) {
        drawTwoLines(*item, painter, widget);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void MenuStyle::drawTwoLines(const QStyleOptionMenuItem &item, QPainter *painter, const QWidget *widget) const
{
    const QFont small = detailFont(item.font);
    const int detailHeight = QFontMetrics(small).height();
    QStyleOptionMenuItem background(item);
    background.text.clear();
    background.checkType = QStyleOptionMenuItem::NotCheckable;
    QProxyStyle::drawControl(CE_MenuItem, &background, painter, widget);

    // Then the lines, which must not paint it again: the first as an entry of one line, the second below its
    // text.
    const QColor color = textColor(item);
    QStyleOptionMenuItem line(item);
    line.state &= ~State_Selected;
    setTextColor(line, color);
    line.text = title(item);
    line.rect.setHeight(item.rect.height() - detailHeight);
    QProxyStyle::drawControl(CE_MenuItem, &line, painter, widget);

    line.checkType = QStyleOptionMenuItem::NotCheckable;
    line.font = small;
    setTextColor(line, dimmed(color, 0.6));
    line.text = detail(item);
    line.rect.moveTop((line.rect.top() + line.rect.bottom() + 1 + QFontMetrics(item.font).height()) / 2);
    line.rect.setHeight(detailHeight);
    QProxyStyle::drawControl(CE_MenuItem, &line, painter, widget);
}

} // namespace nubble
