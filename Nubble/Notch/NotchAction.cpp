#include "Notch/NotchAction.h"

#include "Platform/MainThread.h"

namespace nubble {

void NotchAction::setLook(const Look &look)
{
    assertMainThread("Nubble/Notch/NotchAction");
    if (m_look == look)
        return;
    m_look = look;
    Q_EMIT lookChanged();
}

} // namespace nubble
