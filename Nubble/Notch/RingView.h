#pragma once

#include <QColor>
#include <QImage>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <array>
#include <optional>

#include "Sessions/RunState.h"

namespace nubble {

struct CellFrame;

// What is drawn of the status ring's cell: the ring, the percentage below it, the keyboard's focus, and the
// light that falls on it below the pointer.
// Opaque, on the body's black; the mouse goes to the cell. Repaints only when something that it shows
// changes, and the ends of the turning arc while something works and is seen. Each session that begins
// to wait is pointed out by two beats of the badge, the check mark of what has finished is drawn, and arc and
// number glide to a new value.
class RingView : public QWidget {
    Q_OBJECT

public:
    explicit RingView(QWidget *cell);

    void place(const CellFrame &frame);
    [[nodiscard]] QPointF ringCenter() const; // in pixels

    void setActivity(const Activity &activity);
    void setUsage(std::optional<double> fraction, bool isOld); // of the plan; above 1 as 1
    void setFocused(bool focused);
    void setLight(const QColor &light); // an equal one repaints nothing
    void setMotionReduced(bool reduced);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    // A turn in 1.4 seconds. In a step the arc's ends move by less than two pixels, however late it is.
    static constexpr int stepTime = 35; // milliseconds
    static constexpr int stepsPerTurn = 40;
    static constexpr int beatTime = 300; // milliseconds
    static constexpr int beats = 2;
    static constexpr int checkTime = 220; // milliseconds; so is the next one
    static constexpr int glideTime = 200;

    struct EndOfArc {
        QRect place;
        QImage picture; // on the device's pixels; null until it has been drawn
    };
    using Step = std::array<EndOfArc, 2>;

    [[nodiscard]] bool isWorking() const { return m_activity.overall == RunState::Working; }
    void animateIfNeeded();
    void stopMotion();
    [[nodiscard]] bool mayMove() const;
    void glide(int from, int to); // percent
    void turnOn();
    void draw(QPainter &painter) const;
    void drawRing(QPainter &painter) const;
    void drawPercent(QPainter &painter, int percent) const;
    void drawEnd(QPainter &painter, EndOfArc &end) const;

    [[nodiscard]] QPointF center() const;  // of the ring
    [[nodiscard]] double strength() const; // the opacity of what tells the plan's use
    [[nodiscard]] std::optional<double> shownFraction() const;

    double m_unit = 1;
    QPointF m_center; // of the circle, in units as the others, and of all of it
    QPointF m_middle;
    QRectF m_percentRect;
    Activity m_activity;
    std::optional<double> m_fraction;
    bool m_isUsageOld = false;
    bool m_focused = false;
    QColor m_light = Qt::transparent;
    bool m_motionReduced = false;
    QVariantAnimation m_beat{this};  // the badge's size
    QVariantAnimation m_check{this}; // how much of the mark is there
    QVariantAnimation m_glide{this}; // the percentage, so that it draws no frame in which that is the same
    QTimer m_frame;
    int m_step = 0;
    std::array<Step, stepsPerTurn> m_steps; // as they have been drawn in the turns before
};

} // namespace nubble
