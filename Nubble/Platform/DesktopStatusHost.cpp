#include "Platform/DesktopStatusHost.h"

#include "Platform/Freedesktop/StatusNotifierWatch.h"
#include "Platform/X11/X11Tray.h"

namespace nubble {

DesktopStatusHost::DesktopStatusHost(
    std::unique_ptr<StatusNotifierWatch> notifiers, std::unique_ptr<X11Tray> tray,
    std::chrono::milliseconds patience)
    : m_notifiers(std::move(notifiers)), m_tray(std::move(tray))
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] { settleFor(Kind::Embedding); });
    connect(m_notifiers.get(), &StatusNotifierWatch::changed, this, &DesktopStatusHost::decide);
    if (m_tray)
        connect(m_tray.get(), &X11Tray::changed, this, &DesktopStatusHost::decide);
    decide();
}

DesktopStatusHost::~DesktopStatusHost() = default;

void DesktopStatusHost::decide()
{
    using State = StatusNotifierWatch::State;
    const State notifiers = m_notifiers->state();
    if (m_kind != Kind::None) {
        if (m_kind == Kind::Remote && notifiers != State::Unanswered)
            m_isHostGone = notifiers != State::Hosted;
        Q_EMIT changed(); // another tray may have other colours
        return;
    }
    const bool tray = m_tray && m_tray->isThere();
    if (notifiers == State::Hosted)
        settleFor(Kind::Remote);
    else if (tray && notifiers == State::Absent)
        settleFor(Kind::Embedding);
    else if (!tray || notifiers == State::Unanswered) // the toolkit would wait for that answer
        m_patience.stop();
    else if (!m_patience.isActive())
        m_patience.start();
}

void DesktopStatusHost::settleFor(Kind kind)
{
    m_patience.stop();
    m_kind = kind;
    Q_EMIT changed();
}

std::optional<QColor> DesktopStatusHost::foreground() const
{
    return m_kind == Kind::Embedding ? m_tray->foreground() : std::nullopt;
}

} // namespace nubble
