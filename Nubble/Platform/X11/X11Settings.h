#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>

#include "Platform/AnimationSetting.h"
#include "Platform/X11/X11PropertyWatch.h"
#include "Platform/X11/X11SelectionWatch.h"

namespace nubble {

// The number of that name among a desktop's settings as they are announced on X11 (freedesktop.org's
// XSETTINGS). None where it is missing, of another kind, or the bytes end before it.
[[nodiscard]] std::optional<int32_t> settingIn(const QByteArray &settings, const QByteArray &name);

// `Gtk/EnableAnimations` of the settings' manager, whenever that comes and whatever it says later.
class X11Settings : public AnimationSetting {
    Q_OBJECT

public:
    explicit X11Settings(std::shared_ptr<const X11Connection> x11);

    [[nodiscard]] std::optional<bool> animates() const override { return m_animates; }

private:
    void follow();
    void read();

    std::shared_ptr<const X11Connection> m_x11;
    X11SelectionWatch m_manager;
    X11PropertyWatch m_watch;
    std::optional<bool> m_animates;
};

} // namespace nubble
