#pragma once

#include <QObject>

#include <optional>

namespace nubble {

// A place in which a desktop keeps whether it wants animations. Main thread only.
class AnimationSetting : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] virtual std::optional<bool> animates() const = 0; // none: it does not say

Q_SIGNALS:
    void changed(); // perhaps
};

} // namespace nubble
