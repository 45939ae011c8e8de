#include "Review/ReviewParts.h"

#include <QLabel>
#include <QVBoxLayout>

#include "Review/ReviewTexts.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/Palette.h"
#include "Widgets/SymbolSign.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int bannerHeight = 46;
constexpr double bannerSymbol = 15;
constexpr double bannerArrow = 10;
constexpr int bannerGap = 9;
constexpr int dayHeight = 22;

} // namespace

LogoButton::LogoButton(QWidget *parent) : PillButton({}, parent)
{
    setFont(Typography::cardBody());
    setMeasures(24, 8);
    setAccent(Palette::quenwick);
    setSymbol(u"arrow.up.right"_s);
    setHelpText(openText());
    setPending(0);
}

void LogoButton::setPending(int pending)
{
    setTitle(pending > 0 ? QString::number(pending) : QString());
    setAccessibleName(openText());
}

ClosedBanner::ClosedBanner(QWidget *parent) : QAbstractButton(parent), m_hover(this)
{
    setText(closedText());
    setAccessibleName(closedText());
    setToolTip(openText());
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ClosedBanner::sizeHint() const
{
    return Units::px(this, QSizeF(200, bannerHeight));
}

void ClosedBanner::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = painter.area().adjusted(0.75, 0.75, -0.75, -0.75);
    QColor fill = Palette::quenwick;
    fill.setAlphaF(0.2F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(box, 10, 10);
    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Palette::cardLine, 1));
    painter.setBrush(m_hover.lifted(Qt::transparent, isDown()));
    painter.drawRoundedRect(box, 10, 10);

    QRectF area = box.adjusted(CardMetrics::rowPadding, 0, -CardMetrics::rowPadding, 0);
    const auto square = [&area](double left, double side) {
        return QRectF(left, area.center().y() - side / 2, side, side);
    };
    Symbols::draw(painter, u"moon.zzz.fill"_s, square(area.left(), bannerSymbol), Palette::quenwickText);
    Symbols::draw(
        painter, u"arrow.up.right"_s, square(area.right() - bannerArrow, bannerArrow),
        Palette::textSecondary);
    area.adjust(bannerSymbol + bannerGap, 0, -bannerArrow - bannerGap, 0);
    painter.setFont(Typography::cardBody());
    painter.setPen(Palette::textPrimary);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, text());
}

EmptyInbox::EmptyInbox(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(
        Units::px(this, QMargins(CardMetrics::rowPadding, 14, CardMetrics::rowPadding, 10)));
    layout->setSpacing(Units::px(this, 3));
    layout->addWidget(
        new SymbolSign(u"checkmark.seal.fill"_s, SymbolSign::large, Palette::quenwick), 0, Qt::AlignHCenter);
    layout->addSpacing(Units::px(this, 6));
    const QStringList texts = allClearTexts();
    for (const QString &text : texts) {
        QLabel *label = CardMetrics::makeNote(this);
        label->setText(text);
        label->setAlignment(Qt::AlignHCenter);
        if (&text == &texts.first()) {
            label->setFont(Units::px(this, Typography::rowTitle()));
            QPalette palette = label->palette();
            palette.setColor(QPalette::WindowText, Palette::textPrimary);
            label->setPalette(palette);
        }
        layout->addWidget(label);
    }
}

DayHeader::DayHeader(const QString &label, bool soon, QWidget *parent)
    : QWidget(parent), m_label(label), m_soon(soon)
{
    setFixedHeight(Units::px(this, dayHeight));
    setAccessibleName(label);
}

void DayHeader::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setFont(Typography::dayHeader());
    painter.setPen(m_soon ? Palette::quenwickText : Palette::textSecondary);
    painter.drawText(
        painter.area().adjusted(CardMetrics::rowPadding, 0, 0, -3), Qt::AlignLeft | Qt::AlignBottom, m_label);
}

} // namespace nubble
