#include "Usage/LimitRow.h"

#include <algorithm>

#include "Usage/UsageColors.h"
#include "Usage/UsageTexts.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr double lineHeight = 16;
constexpr double barTop = 21;
constexpr double barHeight = 6;
constexpr double resetTop = 31;
constexpr double resetHeight = 14;

} // namespace

LimitRow::LimitRow(const QString &label, QWidget *parent) : QWidget(parent), m_label(label)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_bar.setDuration(200);
    m_bar.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_bar, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    describe();
}

QSize LimitRow::sizeHint() const
{
    return Units::px(
        this, QSizeF(100, m_resetText.isEmpty() ? barTop + barHeight + 2 : resetTop + resetHeight + 1));
}

void LimitRow::setWindow(std::optional<int> percent, const QString &resetText, bool animated)
{
    if (m_percent == percent && m_resetText == resetText)
        return;
    const bool runs = animated && m_percent && percent && m_percent != percent;
    const double target = percent.value_or(0) / 100.0;
    m_bar.stop();
    m_bar.setStartValue(runs ? m_bar.currentValue() : QVariant(target));
    m_bar.setEndValue(target);
    m_bar.setCurrentTime(0);
    if (runs)
        m_bar.start();
    m_percent = percent;
    m_resetText = resetText;
    describe();
    updateGeometry();
    update();
}

void LimitRow::describe()
{
    QStringList parts{m_label, m_percent ? percentText(*m_percent) : u"not known"_s, m_resetText};
    parts.removeAll(QString());
    setAccessibleName(parts.join(u", "_s));
}

void LimitRow::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = painter.area().width();
    const QRectF line(0, 0, width, lineHeight);
    painter.setFont(Typography::rowTitle());
    painter.setPen(m_percent ? Palette::textPrimary : Palette::textSecondary);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, m_label);
    painter.setFont(Typography::cardBody());
    painter.setPen(Palette::textSecondary);
    Typography::drawTabular(painter, line, Qt::AlignRight, m_percent ? percentText(*m_percent) : u"–"_s);
    drawBar(painter, QRectF(0, barTop, width, barHeight));
    painter.setFont(Typography::caption());
    painter.setPen(Palette::textSecondary);
    Typography::drawTabular(painter, QRectF(0, resetTop, width, resetHeight), Qt::AlignLeft, m_resetText);
}

// Which must not look like a bar of nothing.
void LimitRow::drawMissing(QPainter &painter, const QRectF &bar)
{
    constexpr double length = 6;
    constexpr double gap = 5;
    constexpr double thickness = 2;
    QPen pen(Palette::barTrack, thickness, Qt::CustomDashLine, Qt::FlatCap);
    pen.setDashPattern({length / thickness, gap / thickness});
    painter.setPen(pen);
    painter.drawLine(QPointF(bar.left(), bar.center().y()), QPointF(bar.right(), bar.center().y()));
}

void LimitRow::drawBar(QPainter &painter, const QRectF &bar) const
{
    if (!m_percent) {
        drawMissing(painter, bar);
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(Palette::barTrack);
    painter.drawRoundedRect(bar, barHeight / 2, barHeight / 2);
    const double shown = m_bar.currentValue().toDouble();
    if (shown <= 0)
        return;
    QRectF used = bar;
    used.setWidth(std::max(barHeight, bar.width() * shown)); // never less than a dot
    painter.setBrush(colorOf(levelOf(*m_percent)));
    painter.drawRoundedRect(used, barHeight / 2, barHeight / 2);
}

} // namespace nubble
