#pragma once

#include <QObject>

namespace nubble {

// What the user has asked of the whole desktop. Main thread only; what cannot be found out has its usual
// value.
class DesktopPreferences : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] virtual bool reducedMotion() const = 0;

Q_SIGNALS:
    void reducedMotionChanged();
};

} // namespace nubble
