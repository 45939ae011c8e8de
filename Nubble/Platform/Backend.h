#pragma once

#include <functional>
#include <memory>

#include "Platform/DesktopPreferences.h"
#include "Platform/MouseMonitor.h"
#include "Platform/PanelSurface.h"
#include "Platform/Workspace.h"

namespace nubble {

class Home;

// The services of the desktop that the program runs on. All members are set, whichever it is.
struct Backend {
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<MouseMonitor> mouseMonitor;
    std::unique_ptr<DesktopPreferences> preferences;
    std::function<std::unique_ptr<PanelSurface>(QWidget &)> makePanelSurface;
};

// To be called once, after the application object has been made. Where there is no backend for Qt's platform
// the panel is a plain window on top of others, and there are no applications. Main thread only.
[[nodiscard]] Backend makeBackend(const Home &home);

} // namespace nubble
