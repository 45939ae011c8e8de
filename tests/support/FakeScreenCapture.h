#pragma once

#include <QImage>

#include "Platform/ScreenCapture.h"

namespace nubble {

// A screen that a test paints.
class FakeScreenCapture : public ScreenCapture {
public:
    [[nodiscard]] bool canCapture() const override { return allowed; }
    [[nodiscard]] QImage grab() override
    {
        ++grabs;
        return picture;
    }

    bool allowed = true;
    QImage picture;
    int grabs = 0;
};

} // namespace nubble
