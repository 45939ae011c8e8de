#include "Widgets/MenuStyle.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionMenuItem>

#include <algorithm>

#include "Widgets/Palette.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int paddingAlong = 12 - MenuStyle::inset; // within an entry, the frame's inset makes it 12
constexpr int paddingAcross = 5;
constexpr int separatorHeight = 9;
constexpr double highlightRadius = 6;
constexpr int markSide = 14;
constexpr int markColumn = markSide + 6;
constexpr int arrowColumn = 20;
constexpr int beforeKeys = 24;
constexpr auto singleLine = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextHideMnemonic;

using Item = QStyleOptionMenuItem;

QFont detailFont(QFont font)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(font.pixelSize() * 11 / 13);
    else
        font.setPointSizeF(font.pointSizeF() * 11 / 13);
    return font;
}

QString title(const Item &item)
{
    return item.text.section(u'\t', 0, 0).section(MenuStyle::lineBreak, 0, 0);
}

QString detail(const Item &item)
{
    return item.text.section(u'\t', 0, 0).section(MenuStyle::lineBreak, 1);
}

QString keys(const Item &item)
{
    return item.text.section(u'\t', 1);
}

QSize sizeOf(const QFont &font, const QString &text)
{
    if (text.isEmpty())
        return {};
    return QFontMetrics(font).size(Qt::TextSingleLine | Qt::TextHideMnemonic, text);
}

QSize entrySize(const Item &item)
{
    if (item.menuItemType == Item::Separator)
        return {2 * paddingAlong, separatorHeight};
    const QSize first = sizeOf(item.font, title(item));
    const QSize second = sizeOf(detailFont(item.font), detail(item));
    const int beside = (item.menuHasCheckableItems ? markColumn : 0)
        + (item.menuItemType == Item::SubMenu ? arrowColumn : 0) + (keys(item).isEmpty() ? 0 : beforeKeys);
    return {
        std::max(first.width(), second.width()) + beside + 2 * paddingAlong,
        first.height() + second.height() + 2 * paddingAcross};
}

QColor dimmed(QColor color, double opacity)
{
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

void drawLines(
    QPainter &painter, const QRectF &area, const QColor &color, std::initializer_list<QPointF> points)
{
    QPainterPath path;
    for (const QPointF &point : points) {
        if (path.elementCount() == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    painter.save();
    painter.translate(area.center());
    painter.scale(area.height(), area.height());
    painter.strokePath(path, QPen(color, 0.12, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.restore();
}

// At that end of the area, in the middle of its height.
QRectF squareIn(const QRectF &area, Qt::AlignmentFlag end, double side)
{
    const double left = end == Qt::AlignLeft ? area.left() : area.right() - side;
    return {left, area.center().y() - side / 2, side, side};
}

void drawTexts(QPainter &painter, const Item &item, QRectF area, const QColor &color)
{
    const QColor secondary = dimmed(color, 0.6);
    painter.setFont(item.font);
    painter.setPen(secondary);
    painter.drawText(area, Qt::AlignRight | singleLine, keys(item));
    QRectF second = area;
    second.setTop(area.bottom() - sizeOf(detailFont(item.font), detail(item)).height());
    area.setBottom(second.top());
    painter.setPen(color);
    painter.drawText(area, Qt::AlignLeft | singleLine, title(item));
    painter.setFont(detailFont(item.font));
    painter.setPen(secondary);
    painter.drawText(second, Qt::AlignLeft | singleLine, detail(item));
}

void drawEntry(QPainter &painter, const Item &item)
{
    if (item.menuItemType == Item::Separator) {
        const QRect line(
            item.rect.left() + paddingAlong, item.rect.center().y(), item.rect.width() - 2 * paddingAlong, 1);
        painter.fillRect(line, Palette::hover);
        return;
    }
    const bool isEnabled = item.state & QStyle::State_Enabled;
    const QColor color = dimmed(Palette::textPrimary, isEnabled ? 1 : 0.45);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isEnabled && item.state & QStyle::State_Selected) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Palette::chosen);
        painter.drawRoundedRect(item.rect, highlightRadius, highlightRadius);
    }
    QRectF area = QRectF(item.rect).adjusted(paddingAlong, paddingAcross, -paddingAlong, -paddingAcross);
    if (item.checkType != Item::NotCheckable && item.checked)
        drawLines(
            painter, squareIn(area, Qt::AlignLeft, markSide), color,
            {{-0.32, 0.02}, {-0.09, 0.25}, {0.33, -0.26}});
    if (item.menuItemType == Item::SubMenu)
        drawLines(
            painter, squareIn(area, Qt::AlignRight, markSide), dimmed(color, 0.6),
            {{0.12, -0.27}, {0.38, 0}, {0.12, 0.27}});
    if (item.menuHasCheckableItems)
        area.setLeft(area.left() + markColumn);
    drawTexts(painter, item, area, color);
}

} // namespace

MenuStyle::MenuStyle() : QProxyStyle(u"fusion"_s) { }

QSize MenuStyle::sizeFromContents(
    ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const
{
    const auto *item = type == CT_MenuItem ? qstyleoption_cast<const Item *>(option) : nullptr;
    return item ? entrySize(*item) : QProxyStyle::sizeFromContents(type, option, size, widget);
}

int MenuStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return inset;
    case PM_MenuPanelWidth:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

void MenuStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    if (element != PE_PanelMenu && element != PE_FrameMenu)
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void MenuStyle::drawControl(
    ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const Item *>(option);
    if (element == CE_MenuItem && item) {
        painter->save();
        drawEntry(*painter, *item);
        painter->restore();
    } else if (element != CE_MenuEmptyArea) {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

} // namespace nubble
