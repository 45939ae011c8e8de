#pragma once

#include <QMargins>

#include "Platform/X11/X11PropertyWatch.h"

namespace nubble {

// The bars of a desktop that draws them itself, above every window. Main thread only.
class X11ShellBars : public QObject {
    Q_OBJECT

public:
    explicit X11ShellBars(std::shared_ptr<const X11Connection> x11);

    // How far they reach into the primary screen from its edges, in device-independent pixels.
    [[nodiscard]] QMargins reach() const;

Q_SIGNALS:
    void changed(); // perhaps to the same

private:
    void read();
    [[nodiscard]] bool areAboveWindows() const;

    std::shared_ptr<const X11Connection> m_x11;
    X11PropertyWatch m_watch;
    std::vector<uint32_t> m_workAreas; // of each screen: left, top, width and height, in pixels
};

} // namespace nubble
