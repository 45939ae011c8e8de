#pragma once

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QTimer>

#include <optional>

#include "Sessions/RunState.h"

namespace nubble {

struct CellFrame;
struct PlanWindows;

// The status ring with the percentage of the plan below it, a button that opens the sessions card. Repaints
// only when something that it shows changes, and at every frame while something works.
class ClaudeCell : public QAbstractButton {
    Q_OBJECT

public:
    explicit ClaudeCell(QWidget *parent = nullptr);

    void place(const CellFrame &frame);

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
    [[nodiscard]] QRect ringArea() const;
    [[nodiscard]] QString percentText() const;
    void animateIfNeeded();
    void describe();

    QPointF m_center; // of the ring, in the cell's coordinates
    QRectF m_percentRect;
    Activity m_activity;
    std::optional<double> m_fraction;
    bool m_motionReduced = false;
    QTimer m_frame;
    QElapsedTimer m_turning;
};

} // namespace nubble
