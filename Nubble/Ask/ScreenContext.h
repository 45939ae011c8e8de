#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace nubble {

struct ScreenContext {
    std::optional<QByteArray> jpeg{};
    std::optional<QImage> thumbnail{};
    std::optional<QString> appName{};
    std::optional<QString> windowTitle{};

    bool operator==(const ScreenContext &) const = default;

    [[nodiscard]] QString label() const;
};

} // namespace nubble
