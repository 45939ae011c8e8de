#pragma once

#include <QAbstractButton>
#include <QImage>
#include <QTimer>

#include <array>
#include <optional>

#include "Placement/NotchEdge.h"
#include "Sessions/RunState.h"

namespace nubble {

struct PlanWindows;

// The status ring with the percentage of the plan below it, a button that opens the sessions card. Repaints
// only when something that it shows changes, and the ends of the turning arc while something works and is
// seen.
class ClaudeCell : public QAbstractButton {
    Q_OBJECT

public:
    explicit ClaudeCell(QWidget *parent = nullptr);

    // Takes the place of the ring whose centre is `ringCenter`, in the parent's coordinates.
    void placeAround(const QPointF &ringCenter, NotchEdge edge, double percentLineHeight);

    void setActivity(const Activity &activity);
    void setUsage(const PlanWindows &windows); // shows the session's; above 1 as 1
    void setMotionReduced(bool reduced);

Q_SIGNALS:
    void hoveredChanged(bool hovered);

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    // A turn in 1.4 seconds. In a step the arc's ends move by less than two pixels, however late it is.
    static constexpr int stepTime = 35; // milliseconds
    static constexpr int stepsPerTurn = 40;

    struct EndOfArc {
        QRect place;
        QImage picture; // on the device's pixels; null until it has been drawn
    };
    using Step = std::array<EndOfArc, 2>;

    [[nodiscard]] bool isWorking() const { return m_activity.overall == RunState::Working; }
    [[nodiscard]] QString percentText() const;
    void animateIfNeeded();
    void turnOn();
    void describe();
    void draw(QPainter &painter) const;
    void drawEnd(QPainter &painter, EndOfArc &end) const;

    QPointF m_center; // of the ring, in the cell's coordinates
    QRectF m_percentRect;
    Activity m_activity;
    std::optional<double> m_fraction;
    bool m_motionReduced = false;
    QTimer m_frame;
    int m_step = 0;
    std::array<Step, stepsPerTurn> m_steps; // as they have been drawn in the turns before
};

} // namespace nubble
