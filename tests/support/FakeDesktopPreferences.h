#pragma once

#include "Platform/DesktopPreferences.h"

namespace nubble {

// Motion is reduced until a test wants to see it.
class FakeDesktopPreferences : public DesktopPreferences {
public:
    [[nodiscard]] bool reducedMotion() const override { return m_reducedMotion; }

    void setReducedMotion(bool reduced)
    {
        m_reducedMotion = reduced;
        Q_EMIT reducedMotionChanged();
    }

private:
    bool m_reducedMotion = true;
};

} // namespace nubble
