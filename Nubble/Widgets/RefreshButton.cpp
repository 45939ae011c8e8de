#include "Widgets/RefreshButton.h"

#include "Widgets/Palette.h"

using namespace Qt::StringLiterals;

namespace nubble {

RefreshButton::RefreshButton(QWidget *parent) : NotchButton(u"arrow.clockwise"_s, u"Refresh now"_s, parent)
{
    m_turn.setStartValue(0.0);
    m_turn.setEndValue(360.0);
    m_turn.setDuration(700);
    connect(&m_turn, &QVariantAnimation::valueChanged, this, [this](const QVariant &degrees) {
        setRotation(degrees.toDouble());
    });
    connect(&m_turn, &QVariantAnimation::finished, this, [this] {
        if (m_refreshing)
            m_turn.start();
        else
            setRotation(0);
    });
}

void RefreshButton::setRefreshing(bool refreshing, bool motionReduced)
{
    m_refreshing = refreshing;
    setTint(refreshing && motionReduced ? Palette::textSecondary : Palette::textPrimary);
    if (refreshing && !motionReduced && m_turn.state() == QAbstractAnimation::Stopped)
        m_turn.start();
}

} // namespace nubble
