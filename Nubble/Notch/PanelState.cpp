#include "Notch/PanelState.h"

using namespace Qt::StringLiterals;

namespace nubble {

QString name(PanelMode mode)
{
    switch (mode.card) {
    case PanelMode::Card::None:
        return u"collapsed"_s;
    case PanelMode::Card::Inbox:
        return u"inbox"_s;
    case PanelMode::Card::Usage:
        return u"usage"_s;
    case PanelMode::Card::Sessions:
        return u"sessions"_s;
    case PanelMode::Card::Notes:
        break;
    }
    return u"notes"_s;
}

void PanelState::setMode(PanelMode mode)
{
    if (m_mode == mode)
        return;
    m_mode = mode;
    Q_EMIT modeChanged(mode);
}

} // namespace nubble
