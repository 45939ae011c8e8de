#include "Platform/Clock.h"

#include <QDateTime>

namespace nubble {

Clock::~Clock() = default;

qint64 SystemClock::msecsSinceEpoch() const
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace nubble
