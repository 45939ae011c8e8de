#pragma once

#include <QWidget>

#include "Platform/FloatingSurface.h"

namespace nubble {

// A plain window that remembers what was asked of it. The keyboard comes and goes as the test says.
class FakeFloatingSurface : public FloatingSurface {
public:
    explicit FakeFloatingSurface(QWidget &ofWindow) : window(ofWindow) { }
    static auto factory(FakeFloatingSurface *&made) // tells which it has made
    {
        return [&made](QWidget &window) {
            auto surface = std::make_unique<FakeFloatingSurface>(window);
            made = surface.get();
            return surface;
        };
    }

    void place(const QRect &frame) override { window.setGeometry(frame); }
    void orderFront() override
    {
        ++ordersFront;
        window.show();
        window.activateWindow();
    }
    void orderOut() override { window.hide(); }
    [[nodiscard]] bool hasKeyboard() const override { return keyboard; }
    void setUnseen(bool is) override { unseen = is; }
    void startMove() override { ++moves; }
    [[nodiscard]] bool isTranslucent() const override { return translucent; }
    void setOutline(const QPainterPath &path) override { outline = path; }

    void giveKeyboard(bool given)
    {
        keyboard = given;
        given ? Q_EMIT keyboardTaken() : Q_EMIT keyboardLost();
    }
    void setTranslucent(bool is)
    {
        translucent = is;
        Q_EMIT translucencyChanged();
    }

    QWidget &window;
    QPainterPath outline;
    int ordersFront = 0;
    int moves = 0;
    bool unseen = false;
    bool keyboard = false;
    bool translucent = false;
};

} // namespace nubble
