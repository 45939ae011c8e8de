#pragma once

#include <QImage>

#include <functional>

#include "Platform/ScreenCapture.h"

namespace nubble {

// A screen that a test paints.
class FakeScreenCapture : public ScreenCapture {
public:
    [[nodiscard]] bool canCapture() const override { return allowed; }
    [[nodiscard]] QImage grab() override
    {
        ++grabs;
        if (grabbed)
            grabbed();
        return picture;
    }
    [[nodiscard]] QImage grabPart(const QRect &) override { return part ? part() : QImage(); }

    bool allowed = true;
    QImage picture;
    int grabs = 0;
    std::function<void()> grabbed; // is told
    std::function<QImage()> part;
};

} // namespace nubble
