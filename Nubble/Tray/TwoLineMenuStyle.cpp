#include "Tray/TwoLineMenuStyle.h"

#include <QFontMetrics>
#include <QStyleOptionMenuItem>

namespace nubble {

namespace {

const QStyleOptionMenuItem *twoLineItem(const QStyleOption *option)
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    return item && item->text.contains(TwoLineMenuStyle::lineBreak) ? item : nullptr;
}

QFont detailFont(QFont font)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(font.pixelSize() * 11 / 13);
    else
        font.setPointSizeF(font.pointSizeF() * 11 / 13);
    return font;
}

int lineWidth(const QFont &font, const QString &text)
{
    return QFontMetrics(font).size(Qt::TextSingleLine, text).width();
}

} // namespace

QSize TwoLineMenuStyle::sizeFromContents(
    ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const
{
    const auto *item = type == CT_MenuItem ? twoLineItem(option) : nullptr;
    if (!item)
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    const QFont small = detailFont(item->font);
    const QString title = item->text.section(lineBreak, 0, 0);
    const QString detail = item->text.section(lineBreak, 1);
    QStyleOptionMenuItem oneLine(*item);
    oneLine.text = title;
    const int width = std::max(lineWidth(item->font, title), lineWidth(small, detail));
    const QSize base = QProxyStyle::sizeFromContents(type, &oneLine, {width, size.height()}, widget);
    return {base.width(), base.height() + QFontMetrics(small).height()};
}

void TwoLineMenuStyle::drawControl(
    ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    const auto *item = element == CE_MenuItem ? twoLineItem(option) : nullptr;
    if (!item) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    // The background and the mark first, on the whole height; the lines then without either.
    QStyleOptionMenuItem bare(*item);
    bare.text.clear();
    QProxyStyle::drawControl(element, &bare, painter, widget);
    const QFont small = detailFont(item->font);
    const int detailHeight = QFontMetrics(small).height();
    const int titleHeight = QFontMetrics(item->font).height();
    const int top = item->rect.top() + (item->rect.height() - titleHeight - detailHeight) / 2;
    const QRect titleRect(item->rect.left(), top, item->rect.width(), titleHeight);
    const QRect detailRect(item->rect.left(), top + titleHeight, item->rect.width(), detailHeight);
    const QColor color =
        item->palette.color(item->state & State_Selected ? QPalette::HighlightedText : QPalette::Text);
    QColor dimmed = color;
    dimmed.setAlphaF(0.6F);
    drawLine(*item, item->text.section(lineBreak, 0, 0), item->font, color, titleRect, painter, widget);
    drawLine(*item, item->text.section(lineBreak, 1), small, dimmed, detailRect, painter, widget);
}

void TwoLineMenuStyle::drawLine(
    const QStyleOptionMenuItem &item, const QString &text, const QFont &font, const QColor &color,
    const QRect &rect, QPainter *painter, const QWidget *widget) const
{
    QStyleOptionMenuItem line(item);
    line.text = text;
    line.font = font;
    line.rect = rect;
    line.checkType = QStyleOptionMenuItem::NotCheckable;
    line.state &= ~State_Selected;
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        line.palette.setColor(role, color);
    QProxyStyle::drawControl(CE_MenuItem, &line, painter, widget);
}

} // namespace nubble
