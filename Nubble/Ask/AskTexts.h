#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace nubble {

struct ScreenContext;

// What the Ask window says, without a window.

// Of the screen that goes with the next question: its name, and whether there is a picture of it. None when
// nothing goes.
[[nodiscard]] std::optional<QString> chipText(const std::optional<ScreenContext> &screen, bool capturing);

// In an empty conversation. Claude sees the screen if there is or will be a picture.
[[nodiscard]] QString invitation(const std::optional<ScreenContext> &screen, bool capturing);

[[nodiscard]] QStringList suggestions();

} // namespace nubble
