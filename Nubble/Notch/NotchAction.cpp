#include "Notch/NotchAction.h"

namespace nubble {

void NotchAction::setLook(const Look &look)
{
    if (m_look == look)
        return;
    m_look = look;
    Q_EMIT lookChanged();
}

} // namespace nubble
