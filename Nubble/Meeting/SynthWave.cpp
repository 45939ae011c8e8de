#include "Meeting/SynthWave.h"

#include <QLinearGradient>

#include <algorithm>

#include "Meeting/MeetingTexts.h"
#include "Meeting/MicLevel.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

namespace nubble {

namespace {

constexpr int waveHeight = 44;
constexpr int captionHeight = 18;
constexpr double thickness = 2;
constexpr double lowest = 2; // of a bar

QLinearGradient colors(double width)
{
    QLinearGradient gradient(0, 0, width, 0);
    gradient.setColorAt(0, Palette::waveOldest);
    gradient.setColorAt(0.5, Palette::waveMiddle);
    gradient.setColorAt(1, Palette::waveNewest);
    return gradient;
}

} // namespace

SynthWave::SynthWave(const MicLevel &mic, QWidget *parent) : QWidget(parent), m_mic(mic)
{
    setFixedHeight(sizeHint().height());
    connect(&mic, &MicLevel::changed, this, [this] {
        describe();
        update();
    });
    describe();
}

QSize SynthWave::sizeHint() const
{
    return Units::px(this, QSizeF(200, waveHeight + captionHeight));
}

void SynthWave::describe()
{
    const QString caption = hearingText(m_mic.level());
    if (accessibleName() != caption)
        setAccessibleName(caption);
}

void SynthWave::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    const double width = painter.area().width();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors(width));
    const LevelMeter::Bars &bars = m_mic.bars();
    const double pitch = (width - thickness) / static_cast<double>(bars.size() - 1);
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const double height = std::max(lowest, waveHeight * static_cast<double>(bars.at(i)));
        painter.setOpacity(bars.at(i) > 0 ? 1 : 0.35);
        painter.drawRoundedRect(
            QRectF(pitch * static_cast<double>(i), (waveHeight - height) / 2, thickness, height),
            thickness / 2, thickness / 2);
    }
    painter.setOpacity(1);
    painter.setFont(Typography::caption());
    painter.setPen(Palette::textSecondary);
    painter.drawText(
        QRectF(0, waveHeight, width, captionHeight), Qt::AlignLeft | Qt::AlignBottom, accessibleName());
}

} // namespace nubble
