#include "Meeting/TimingLines.h"

#include <cmath>

#include "Widgets/CardMetrics.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

int lineHeight()
{
    return static_cast<int>(std::ceil(QFontMetricsF(Typography::cardBody()).lineSpacing()));
}

} // namespace

TimingLines::TimingLines(QWidget *parent) : QWidget(parent)
{
    setFont(Typography::cardBody());
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void TimingLines::setText(const QString &text)
{
    if (m_text == text)
        return;
    const double unit = Units::of(this);
    const qsizetype before = lines(width() / unit).size();
    m_text = text;
    setAccessibleName(text);
    if (lines(width() / unit).size() != before)
        updateGeometry();
    update();
}

QStringList TimingLines::lines(double width) const
{
    constexpr auto separator = u" · ";
    const QFontMetricsF metrics(font());
    QStringList result;
    for (const QString &line : m_text.split(u'\n', Qt::SkipEmptyParts)) {
        const qsizetype at = line.indexOf(separator);
        const bool fits = metrics.horizontalAdvance(line) + 4 <= width; // its digits are a little wider
        if (fits || at < 0)
            result.append(line);
        else
            result += {line.first(at), line.sliced(at + QStringView(separator).size())};
    }
    return result;
}

int TimingLines::heightForWidth(int width) const
{
    return Units::px(this, static_cast<int>(lines(width / Units::of(this)).size()) * lineHeight());
}

QSize TimingLines::sizeHint() const
{
    const int width = Units::px(this, CardMetrics::textWidth);
    return {width, heightForWidth(width)};
}

void TimingLines::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setFont(font());
    painter.setPen(Palette::textPrimary);
    QRectF line(0, 0, painter.area().width(), lineHeight());
    for (const QString &each : lines(line.width())) {
        Typography::drawTabular(painter, line, Qt::AlignLeft, each);
        painter.setPen(Palette::textSecondary);
        line.translate(0, lineHeight());
    }
}

} // namespace nubble
