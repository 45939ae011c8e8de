#include "Widgets/ToolTip.h"

#include <QTextLayout>

#include <algorithm>
#include <cmath>

#include "Shell/OneLine.h"
#include "Widgets/CardFrame.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int around = 12; // for its shadow
constexpr double radius = 8;
constexpr int paddingAlong = 10;
constexpr int paddingAcross = 6;
constexpr int textWidth = ToolTip::widest - 2 * (around + paddingAlong);

void addLines(const QString &paragraph, const QFont &font, QList<ToolTip::Line> &lines)
{
    const bool isRightToLeft = paragraph.isRightToLeft();
    const bool isFirst = lines.isEmpty();
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    QTextLayout layout(paragraph, font);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid() && lines.size() <= ToolTip::mostLines;
         line = layout.createLine()) {
        line.setLineWidth(textWidth);
        QString text = paragraph.sliced(line.textStart(), line.textLength());
        while (text.endsWith(u' '))
            text.chop(1);
        lines.append({text, isRightToLeft, isFirst});
    }
    layout.endLayout();
}

QList<ToolTip::Line> linesOf(const QString &text, const QFont &font)
{
    constexpr qsizetype longest = 4000; // more would only take time
    QList<ToolTip::Line> lines;
    for (const QString &each : text.left(longest).split(u'\n'))
        if (const QString paragraph = withoutControls(each); !paragraph.trimmed().isEmpty())
            addLines(paragraph, font, lines);
    if (lines.size() <= ToolTip::mostLines)
        return lines;
    lines.resize(ToolTip::mostLines);
    QString &last = lines.last().text;
    last = QFontMetricsF(font).elidedText(last + u'…', Qt::ElideRight, textWidth);
    return lines;
}

double lineHeight(const QFont &font)
{
    return std::ceil(QFontMetricsF(font).lineSpacing());
}

QSizeF sizeOf(const QList<ToolTip::Line> &lines, const QFont &font)
{
    const QFontMetricsF metrics(font);
    double width = 0;
    for (const ToolTip::Line &each : lines)
        width = std::max(width, metrics.horizontalAdvance(each.text));
    const QSizeF text(
        std::min<double>(std::ceil(width), textWidth), lineHeight(font) * static_cast<double>(lines.size()));
    return text + 2 * QSizeF(around + paddingAlong, around + paddingAcross);
}

} // namespace

ToolTip::ToolTip(const QString &text, bool translucent, QWidget *window)
    : QLabel(text, window, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput),
      m_translucent(translucent), m_lines(linesOf(text, Typography::cardBody()))
{
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    resize(Units::px(this, sizeOf(m_lines, Typography::cardBody())));
    if (!translucent)
        setMask(frame().region(size(), Units::of(this)));
}

CardFrame ToolTip::frame() const
{
    QPainterPath outline;
    const QRectF all(QPointF(), QSizeF(size()) / Units::of(this));
    outline.addRoundedRect(all.adjusted(around, around, -around, -around), radius, radius);
    return {.outline = outline, .shadow = toolTipShadow, .isOpaque = true};
}

void ToolTip::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(
        0, 0, frame().drawn(size(), devicePixelRatioF(), m_translucent, Units::of(this)));
    UnitPainter painter(this);
    const QFont font = Typography::cardBody();
    painter.setFont(font);
    QRectF area(around + paddingAlong, around + paddingAcross, 0, lineHeight(font));
    area.setRight(painter.area().width() - around - paddingAlong);
    for (const Line &line : m_lines) {
        painter.setPen(line.isFirst ? Palette::textPrimary : Palette::textSecondary);
        const int direction = line.isRightToLeft ? Qt::AlignRight | Qt::TextForceRightToLeft
                                                 : Qt::AlignLeft | Qt::TextForceLeftToRight;
        painter.drawText(
            area, direction | Qt::AlignAbsolute | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
            line.text);
        area.translate(0, area.height());
    }
}

} // namespace nubble
