#pragma once

#include <QRegularExpression>
#include <QVariantAnimation>

#include <cmath>
#include <numbers>

#include "Notch/RingView.h"
#include "Widgets/Palette.h"
#include "notch/PanelUnderTest.h"
#include "usage/UsageCache.h"

namespace nubble {

// What the panel shows around its ring.
class RingPicture {
public:
    RingPicture(const PanelWorld &world, PanelUnderTest &panel) : m_image(pictureOf(panel.view(), scale))
    {
        const QPointF half(Layout::ringDiameter / 2, Layout::ringDiameter / 2);
        const QPointF corner = (world.geometry().ringCenter - half) * scale;
        m_center = QPointF(corner.toPoint()) / scale + half; // it is drawn on whole pixels
    }

    // The colour on the ring's stroke, `turn` of the way round from the top, clockwise.
    [[nodiscard]] QColor at(double turn, double radius = (Layout::ringDiameter - 2.75) / 2) const
    {
        const double angle = (turn - 0.25) * 2 * std::numbers::pi;
        return pixel(radius * QPointF(std::cos(angle), std::sin(angle)));
    }
    // That far from the ring's centre, towards the upper right.
    [[nodiscard]] QColor badge(double distance = 19.5) const { return at(0.125, distance); }
    [[nodiscard]] bool hasTextAt(double below, double redness = 0) const
    {
        for (int x = -12; x <= 12; ++x)
            if (const QColor c = pixel(QPointF(x, below));
                c.lightness() > 100 && c.hslSaturationF() >= redness)
                return true;
        return false;
    }

private:
    static constexpr int scale = 2;

    [[nodiscard]] QColor pixel(const QPointF &fromCenter) const
    {
        const QPoint at = ((m_center + fromCenter) * scale).toPoint();
        return m_image.valid(at) ? m_image.pixelColor(at) : QColor();
    }

    QPointF m_center;
    QImage m_image;
};

// Counts what is painted in all windows for as long as it lives.
class PaintCounter : public QObject {
public:
    PaintCounter() { qApp->installEventFilter(this); }

    [[nodiscard]] qsizetype paintsOf(const QString &name) const
    {
        return painted.filter(QRegularExpression(u'^' + name)).size();
    }

    QStringList painted; // by their accessible names
    int frames = 0;      // timers that wake the program as an animation does

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Paint && widget)
            painted.append(
                (qobject_cast<const RingView *>(widget) ? widget->parentWidget() : widget)->accessibleName());
        const auto *timer = event->type() == QEvent::Timer ? qobject_cast<QTimer *>(watched) : nullptr;
        frames += timer && timer->interval() < 40;
        return false;
    }
};

inline bool isRunning(const QVariantAnimation *motion)
{
    return motion->state() == QAbstractAnimation::Running;
}

// Until everything has been painted that was asked for, and what moves for a while has stopped.
inline void settle(PanelUnderTest &panel)
{
    QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
    for (int quiet = 0; quiet < 3; ++quiet) {
        const PaintCounter counter;
        QTest::qWait(20);
        if (!counter.painted.isEmpty()
            || std::ranges::any_of(panel.view().findChildren<QVariantAnimation *>(), isRunning))
            quiet = -1;
    }
}

// The ring at that moment of what moves for so long, in milliseconds; as it is where nothing does.
inline RingPicture ringDuring(const PanelWorld &world, PanelUnderTest &panel, int duration, int moment)
{
    for (auto *motion : panel.ring()->findChildren<QVariantAnimation *>())
        if (isRunning(motion) && motion->totalDuration() == duration) {
            motion->pause();
            motion->setCurrentTime(moment);
            RingPicture picture(world, panel);
            motion->resume();
            return picture;
        }
    return {world, panel};
}

inline void showUsage(PanelWorld &world, PanelUnderTest &panel, int session)
{
    world.home.write(QStringLiteral(".config/Claude/Cache/Cache_Data/a_0"), UsageCache::usageEntry(session));
    QTRY_VERIFY(!world.planUsage.isRefreshing()); // which may have been too early
    world.planUsage.refresh(true);
    QTRY_VERIFY(
        panel.ring()->accessibleName().endsWith(QStringLiteral(", %1 % of the plan used").arg(session)));
}

inline bool isNear(QRgb a, QRgb b) // but for the soft edges of curves that begin elsewhere
{
    const auto differ = [](int x, int y) { return std::abs(x - y) > 24; };
    return !differ(qRed(a), qRed(b)) && !differ(qGreen(a), qGreen(b)) && !differ(qBlue(a), qBlue(b));
}

// A timer that fires nearly as often as the frames do tells when several would have been painted.
inline void expectMotion(bool turning)
{
    const PaintCounter counter;
    int ticks = 0;
    QTimer frames;
    frames.callOnTimeout([&ticks] { ++ticks; });
    frames.start(40);
    if (turning)
        QTRY_VERIFY(counter.paintsOf(QStringLiteral("Claude sessions")) >= 5);
    QTRY_VERIFY(ticks >= 10);
    if (!turning)
        QVERIFY2(
            counter.painted.isEmpty() && counter.frames == 0,
            qPrintable(QStringLiteral("%1 frames, painted: %2")
                           .arg(counter.frames)
                           .arg(counter.painted.join(QStringLiteral(", ")))));
}

} // namespace nubble
