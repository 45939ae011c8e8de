#include "Notch/PanelState.h"

#include "Platform/MainThread.h"

using namespace Qt::StringLiterals;

namespace nubble {

QString name(PanelMode mode)
{
    return mode.isCollapsed() ? u"collapsed"_s : QString(mode.card);
}

void PanelState::setMode(PanelMode mode)
{
    assertMainThread("Nubble/Notch/PanelState");
    if (m_mode == mode)
        return;
    m_mode = mode;
    Q_EMIT modeChanged(mode);
}

} // namespace nubble
