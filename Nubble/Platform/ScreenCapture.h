#pragma once

class QImage;
class QRect;

namespace nubble {

// Pictures of the screen. Main thread only.
class ScreenCapture {
public:
    virtual ~ScreenCapture() = default;

    // Whether this program may see the screen. Asks the user nothing.
    [[nodiscard]] virtual bool canCapture() const = 0;

    // The display under the pointer, or the first where it is under none, in device pixels. Null when it
    // cannot be had. Blocks until it is there.
    [[nodiscard]] virtual QImage grab() = 0;

    // That part of the screen, which is in screen coordinates.
    [[nodiscard]] virtual QImage grabPart(const QRect &part) = 0;
};

} // namespace nubble
