#include "Ask/ScreenSettling.h"

#include <chrono>

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto interval = 20ms;
constexpr int sameInARow = 3; // 60 ms without a change: no fade is that slow
constexpr int mostLooks = 30;

} // namespace

ScreenSettling::ScreenSettling(Look look, QObject *parent) : QObject(parent), m_look(std::move(look))
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout(this, &ScreenSettling::lookAgain);
}

void ScreenSettling::start(const QImage &before)
{
    m_before = before;
    m_last = {};
    m_looks = 0;
    m_same = 0;
    m_timer.start(interval);
}

void ScreenSettling::lookAgain()
{
    QImage now = m_look();
    m_same = now == m_last && now != m_before ? m_same + 1 : 0;
    m_last = std::move(now);
    if (++m_looks < mostLooks && m_same < sameInARow)
        return;
    m_timer.stop();
    m_before = {};
    m_last = {};
    Q_EMIT settled();
}

} // namespace nubble
