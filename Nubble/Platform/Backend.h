#pragma once

#include <QByteArray>

#include <functional>
#include <memory>
#include <optional>

#include "Platform/DesktopNotices.h"
#include "Platform/DesktopPreferences.h"
#include "Platform/DistributedNotifications.h"
#include "Platform/FloatingSurface.h"
#include "Platform/HotKeyService.h"
#include "Platform/MouseMonitor.h"
#include "Platform/PanelSurface.h"
#include "Platform/ScreenCapture.h"
#include "Platform/StatusHost.h"
#include "Platform/Workspace.h"

namespace nubble {

class Home;

// The services of the desktop that the program runs on. All members are set, whichever it is.
struct Backend {
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<MouseMonitor> mouseMonitor;
    std::unique_ptr<HotKeyService> hotKeys;
    std::unique_ptr<ScreenCapture> screenCapture;
    std::unique_ptr<DesktopPreferences> preferences;
    std::unique_ptr<StatusHost> statusHost;
    std::unique_ptr<DistributedNotifications> notifications;
    std::unique_ptr<DesktopNotices> notices;
    std::function<std::unique_ptr<PanelSurface>(QWidget &)> makePanelSurface;
    std::function<std::unique_ptr<FloatingSurface>(QWidget &)> makeFloatingSurface;
};

// The platform plugin that Qt is to be started with: X11 wherever there is an X server, unless the user has
// chosen (then it is empty). None when there is no display. Asked before the application object is made.
[[nodiscard]] std::optional<QByteArray> qtPlatform();

// To be called once, after the application object has been made. Where there is no backend for Qt's platform
// the panel is a plain window on top of others, and there are no applications. Main thread only.
[[nodiscard]] Backend makeBackend(const Home &home);

} // namespace nubble
