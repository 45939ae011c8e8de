#pragma once

#include <QAbstractButton>

#include "Sessions/RunState.h"
#include "Widgets/HoverLift.h"

namespace nubble {

class RingView;
struct CellFrame;
struct PlanWindows;

// The status ring with the percentage of the plan below it, a button that opens the sessions card. It is
// larger than what is seen of it.
class ClaudeCell : public QAbstractButton {
    Q_OBJECT

public:
    explicit ClaudeCell(QWidget *parent = nullptr);

    void place(const CellFrame &frame);
    [[nodiscard]] QPointF ringCenter() const; // in the parent's coordinates

    void setActivity(const Activity &activity);
    void setUsage(const PlanWindows &windows, bool isOld); // shows the session's; above 1 as 1
    void setMotionReduced(bool reduced);

Q_SIGNALS:
    void ringMoved(); // within the cell
    void hoveredChanged(bool hovered);

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void describe();

    RingView *m_view;
    HoverLift m_hover;
    Activity m_activity;
    std::optional<double> m_fraction;
    bool m_isUsageOld = false;
};

} // namespace nubble
