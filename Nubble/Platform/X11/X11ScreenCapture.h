#pragma once

#include <memory>

#include "Platform/ScreenCapture.h"

namespace nubble {

class X11Connection;

// Reads the pixels from the X server, which lets every program see the screen.
class X11ScreenCapture : public ScreenCapture {
public:
    explicit X11ScreenCapture(std::shared_ptr<const X11Connection> x11);

    [[nodiscard]] bool canCapture() const override { return true; }
    [[nodiscard]] QImage grab() override;

private:
    std::shared_ptr<const X11Connection> m_x11;
};

} // namespace nubble
