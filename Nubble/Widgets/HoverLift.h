#pragma once

#include <QVariantAnimation>

class QColor;
class QWidget;

namespace nubble {

// How far a control is lifted: 0 at rest, 1 under the pointer, on the way within 120 ms. Repaints the control
// while it changes.
class HoverLift : public QVariantAnimation {
    Q_OBJECT

public:
    explicit HoverLift(QWidget *control);

    // White, as dense as `fill` and brighter the more the control is lifted; a pressed one is brighter still.
    [[nodiscard]] QColor lifted(const QColor &fill, bool pressed) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace nubble
