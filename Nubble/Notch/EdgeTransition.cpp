#include "Notch/EdgeTransition.h"

namespace nubble {

namespace {

constexpr int leaving = 80; // milliseconds; so is the next one
constexpr int coming = 120;
constexpr double way = 8;

} // namespace

EdgeTransition::EdgeTransition(QObject *parent) : QObject(parent)
{
    m_motion.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_motion, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_presence = value.toDouble();
        Q_EMIT presenceChanged();
    });
    connect(&m_motion, &QVariantAnimation::finished, this, [this] {
        if (m_motion.endValue() != 0.0)
            return;
        run(1, coming);
        Q_EMIT turned();
    });
}

bool EdgeTransition::isLeaving() const
{
    return m_motion.state() == QAbstractAnimation::Running && m_motion.endValue() == 0.0;
}

double EdgeTransition::distance() const
{
    return way * (1 - m_presence);
}

void EdgeTransition::start()
{
    m_motion.stop();
    run(0, leaving);
}

void EdgeTransition::stop()
{
    m_motion.stop();
    m_presence = 1;
}

void EdgeTransition::run(double to, int duration)
{
    m_motion.setStartValue(m_presence);
    m_motion.setEndValue(to);
    m_motion.setDuration(duration);
    m_motion.start();
}

} // namespace nubble
