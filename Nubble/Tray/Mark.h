#pragma once

#include <QColor>
#include <QIcon>

#include <optional>

namespace nubble::Mark {

// The program's mark as an icon, drawn anew for every size that is asked for, paler while the panel is
// hidden. Without a colour it is white with a dark edge, to be seen on light and dark ground alike.
// `themeName` is what desktops that colour icons themselves look up, where it is installed. Main thread only.
[[nodiscard]] QIcon icon(
    const std::optional<QColor> &color, bool panelVisible, const QString &themeName = {});

} // namespace nubble::Mark
