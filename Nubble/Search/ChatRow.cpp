#include "Search/ChatRow.h"

#include <QDateTime>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

#include "Search/ChatTexts.h"
#include "Thread/LineSpan.h"
#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int inset = 8; // of the highlight from the list's edges
constexpr int padding = 10;
constexpr double iconSide = 15;
constexpr int buttonSide = 26;
constexpr qsizetype before = 40; // characters of a snippet that stand before its first match

} // namespace

QString excerpt(const QString &snippet, const TextMatcher &matcher)
{
    constexpr qsizetype longest = 20000; // that is looked through
    const QString start = snippet.left(longest);
    const QList<TextRange> matches = matcher.in(start);
    if (matches.isEmpty() || matches.first().from <= before)
        return singleLine(start);
    const qsizetype from = matches.first().from - before;
    const qsizetype space = start.indexOf(u' ', from);
    return u'…' + singleLine(start.sliced(space >= 0 && space < matches.first().from ? space + 1 : from));
}

ChatRow::ChatRow(HitOf hitOf, Now now, QObject *parent)
    : QStyledItemDelegate(parent), m_hitOf(std::move(hitOf)), m_now(std::move(now))
{
}

QSize ChatRow::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {200, height};
}

QRect ChatRow::openButton(const QRect &row)
{
    const int left = row.right() + 1 - inset - padding - buttonSide + 2;
    return {left, row.center().y() - buttonSide / 2 + 1, buttonSide, buttonSide};
}

void ChatRow::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const ChatHit &hit = m_hitOf(index.row());
    const bool isSelected = option.state & QStyle::State_Selected;
    const bool isHovered = option.rect.contains(m_pointer);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(option.rect).adjusted(inset, 1, -inset, -1);
    painter->setPen(option.state & QStyle::State_HasFocus ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
    painter->setBrush(isSelected ? Palette::chosen : isHovered ? Palette::control : QColor(Qt::transparent));
    painter->drawRoundedRect(box, 10, 10);

    QRectF area = box.adjusted(padding, 6, -padding, -7);
    const QString symbol = hit.source == u"code" ? u"terminal"_s : u"text.bubble.fill"_s;
    Symbols::draw(
        *painter, symbol, QRectF(area.left(), area.top() + 2.5, iconSide, iconSide), Palette::textSecondary);
    area.setLeft(area.left() + iconSide + 10);
    if ((isSelected || isHovered) && !openText(targetOf(hit)).isEmpty()) {
        drawButton(*painter, option.rect, hit);
        area.setRight(openButton(option.rect).left() - 8);
    }

    painter->setFont(Typography::resultTitle());
    painter->setPen(Palette::textPrimary);
    const QRectF title(area.left(), area.top(), area.width(), 20);
    Typography::drawElided(*painter, title, titleText(hit.title));
    drawSnippet(*painter, QRectF(area.left(), title.bottom(), area.width(), 18), hit.snippet);
    drawMeta(*painter, QRectF(area.left(), area.bottom() - 15, area.width(), 15), hit);
    painter->restore();
}

void ChatRow::drawButton(QPainter &painter, const QRect &row, const ChatHit &hit) const
{
    const QRect button = openButton(row);
    painter.setPen(Qt::NoPen);
    painter.setBrush(button.contains(m_pointer) ? Palette::hover : Palette::control);
    painter.drawEllipse(button);
    Symbols::draw(
        painter, openSymbol(targetOf(hit)), QRectF(button).adjusted(6.5, 6.5, -6.5, -6.5),
        Palette::textPrimary);
}

void ChatRow::drawSnippet(QPainter &painter, const QRectF &line, const QString &snippet) const
{
    const QFont font = Typography::cardBody();
    const QFontMetricsF metrics(font);
    const QString text = Typography::elidedLine(font, excerpt(snippet, m_matcher), line.width());
    QTextLayout layout(text, font);
    layout.beginLayout();
    QTextLine only = layout.createLine();
    if (only.isValid())
        only.setLineWidth(1 << 20);
    layout.endLayout();
    const QPointF corner = line.topLeft() + QPointF(0, (line.height() - metrics.height()) / 2);
    QList<QTextLayout::FormatRange> lit;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Palette::match);
    for (const TextRange &match : m_matcher.in(text)) {
        for (const LineSpan &each : spansOf(only, text, match)) {
            const QRectF box(
                corner + QPointF(each.left, 0), QSizeF(each.right - each.left, metrics.height()));
            painter.drawRoundedRect(box.adjusted(-1.5, 0, 1.5, 0), 3, 3);
        }
        QTextCharFormat format;
        format.setForeground(Palette::textPrimary);
        lit.append({match.from, match.to - match.from, format});
    }
    painter.setPen(Palette::textSecondary);
    layout.draw(&painter, corner, lit);
}

void ChatRow::drawMeta(QPainter &painter, const QRectF &line, const ChatHit &hit) const
{
    constexpr double starSide = 10;
    painter.setFont(Typography::caption());
    painter.setPen(Palette::textSecondary);
    const double most = line.width() - (hit.starred ? starSide + 6 : 0);
    const QString text = Typography::elidedLine(painter.font(), metaText(hit, m_now()), most);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    if (!hit.starred)
        return;
    const double left = line.left() + QFontMetricsF(painter.font()).horizontalAdvance(text) + 6;
    Symbols::draw(
        painter, u"star.fill"_s, QRectF(left, line.center().y() - starSide / 2, starSide, starSide),
        Palette::badge);
}

} // namespace nubble
