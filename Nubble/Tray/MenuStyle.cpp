#include "Tray/MenuStyle.h"

#include <QFontMetrics>
#include <QStyleOptionMenuItem>

namespace nubble {

namespace {

const QStyleOptionMenuItem *twoLineItem(const QStyleOption *option)
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    return item && item->text.contains(MenuStyle::lineBreak) ? item : nullptr;
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

QColor dimmed(QColor color)
{
    color.setAlphaF(0.6F);
    return color;
}

void setTextColor(QStyleOptionMenuItem &item, const QColor &color)
{
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        item.palette.setColor(role, color);
}

} // namespace

QSize MenuStyle::sizeFromContents(
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

int MenuStyle::styleHint(
    StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returned) const
{
    return hint == SH_EtchDisabledText ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
}

void MenuStyle::drawControl(
    ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    const auto *item = element == CE_MenuItem ? twoLineItem(option) : nullptr;
    if (!item) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    const QFont small = detailFont(item->font);
    const int detailHeight = QFontMetrics(small).height();
    QStyleOptionMenuItem background(*item);
    background.text.clear();
    background.checkType = QStyleOptionMenuItem::NotCheckable;
    QProxyStyle::drawControl(element, &background, painter, widget);

    // Then the lines, which must not paint it again: the first as an entry of one line, the second below its
    // text.
    QStyleOptionMenuItem line(*item);
    line.state &= ~State_Selected;
    const QColor color =
        item->palette.color(item->state & State_Selected ? QPalette::HighlightedText : QPalette::Text);
    setTextColor(line, color);
    line.text = item->text.section(lineBreak, 0, 0);
    line.rect.setHeight(item->rect.height() - detailHeight);
    QProxyStyle::drawControl(element, &line, painter, widget);

    line.checkType = QStyleOptionMenuItem::NotCheckable;
    line.font = small;
    setTextColor(line, dimmed(color));
    line.text = item->text.section(lineBreak, 1);
    line.rect.moveTop((line.rect.top() + line.rect.bottom() + 1 + QFontMetrics(item->font).height()) / 2);
    line.rect.setHeight(detailHeight);
    QProxyStyle::drawControl(element, &line, painter, widget);
}

} // namespace nubble
