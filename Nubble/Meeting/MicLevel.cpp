#include "Meeting/MicLevel.h"

#include <utility>

#include "Platform/MainThread.h"

namespace nubble {

namespace {

constexpr std::size_t mostWaiting = 4096; // more than a minute's, should the main thread be that late

} // namespace

MicLevel::MicLevel(AudioInput &input, const Clock &clock, QObject *parent)
    : QObject(parent), m_input(&input), m_clock(&clock), m_meter(clock.now()), m_told(m_meter)
{
}

MicLevel::MicLevel(float preview, QObject *parent)
    : QObject(parent), m_input(nullptr), m_clock(nullptr), m_meter(LevelMeter::preview(preview)),
      m_told(m_meter)
{
}

void MicLevel::start()
{
    assertMainThread("Nubble/Meeting/MicLevel");
    if (!m_input || m_stream)
        return;
    m_hasFailed = false;
    m_values.reserve(mostWaiting); // so that the stream's thread need not
    m_taken.reserve(mostWaiting);
    m_stream = m_input->listen(
        {[this](std::span<const float> samples) {
             if (!samples.empty())
                 handOver(LevelMeter::valueOf(samples));
         },
         [this](const QString &why) {
             QMetaObject::invokeMethod(
                 this, [this, why] { fallSilent(why); }, Qt::QueuedConnection);
         }});
}

void MicLevel::fallSilent(const QString &why)
{
    if (!m_stream)
        return;
    m_meter.reset();
    tell();
    if (!why.isEmpty() && !std::exchange(m_hasFailed, true))
        Q_EMIT failed(why);
}

void MicLevel::stop()
{
    m_stream.reset();
    m_values.clear(); // nobody else is left to touch them
    m_meter.reset();
    tell();
}

void MicLevel::handOver(float value)
{
    const QMutexLocker lock(&m_mutex);
    if (m_values.size() < mostWaiting)
        m_values.push_back(value);
    if (!std::exchange(m_isCalled, true))
        QMetaObject::invokeMethod(this, &MicLevel::takeValues, Qt::QueuedConnection);
}

void MicLevel::takeValues()
{
    m_taken.clear();
    {
        const QMutexLocker lock(&m_mutex);
        m_isCalled = false;
        m_values.swap(m_taken);
    }
    const TimePoint now = m_clock->now();
    bool hasNewBar = false;
    for (const float value : m_taken)
        hasNewBar = m_meter.take(value, now) || hasNewBar;
    if (hasNewBar)
        tell();
}

void MicLevel::tell()
{
    const bool isNews = m_meter.level() != m_told.level() || m_meter.bars() != m_told.bars();
    m_told = m_meter;
    if (isNews)
        Q_EMIT changed();
}

} // namespace nubble
