#include <QTest>

#include <cmath>
#include <numbers>

#include "Widgets/Palette.h"
#include "notch/PanelUnderTest.h"
#include "usage/UsageCache.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

// What the panel shows around its ring, at twice the size.
class RingPicture {
public:
    RingPicture(const PanelWorld &world, PanelUnderTest &panel)
        : m_center(world.geometry().ringCenter), m_image(panel.view().size() * 2, QImage::Format_ARGB32)
    {
        m_image.setDevicePixelRatio(2);
        panel.view().render(&m_image);
    }

    // The colour on the ring's stroke, `turn` of the way round from the top, clockwise.
    [[nodiscard]] QColor at(double turn) const
    {
        constexpr double radius = (Layout::ringDiameter - 2.75) / 2;
        const double angle = (turn - 0.25) * 2 * std::numbers::pi;
        return pixel(m_center + radius * QPointF(std::cos(angle), std::sin(angle)));
    }
    [[nodiscard]] QColor badge() const { return pixel(m_center + QPointF(8.2, -8.2)); }

    [[nodiscard]] bool hasTextAt(double below) const // of the ring's centre
    {
        for (int x = -12; x <= 12; ++x)
            if (pixel(m_center + QPointF(x, below)).lightness() > 100)
                return true;
        return false;
    }

private:
    [[nodiscard]] QColor pixel(const QPointF &position) const
    {
        const QPoint at = (position * 2).toPoint();
        return m_image.valid(at) ? m_image.pixelColor(at) : QColor();
    }

    QPointF m_center;
    QImage m_image;
};

void setUsage(PanelWorld &world, int session, int weekly)
{
    const QString json = u"{\"five_hour\":{\"utilization\":%1},\"seven_day\":{\"utilization\":%2}}"_s;
    world.home.write(
        u".config/Claude/Cache/Cache_Data/a_0"_s,
        UsageCache::entry(
            UsageCache::usageKey(), UsageCache::compressed(json.arg(session).arg(weekly).toUtf8())));
    QTRY_VERIFY(!world.planUsage.isRefreshing()); // which may have been too early
    world.planUsage.refresh(true);
}

} // namespace

class TestRing : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theArcIsTheSessionWindowsPartClockwiseFromTheTop()
    {
        const auto isTrack = [](const QColor &color) {
            return color.saturation() == 0 && color.value() < 80;
        };
        for (const auto &[percent, color] :
             {std::pair(25, Palette::ample), {55, Palette::watch}, {70, Palette::critical}}) {
            PanelWorld world;
            setUsage(world, percent, 95);
            PanelUnderTest panel(world);
            QTRY_VERIFY(panel.ring()->accessibleName().endsWith(u", %1 % of the plan used"_s.arg(percent)));
            const RingPicture picture(world, panel);
            const double used = percent / 100.0;
            for (const double turn : {0.02, used / 2, used - 0.02})
                QCOMPARE(picture.at(turn), color);
            for (const double turn : {used + 0.07, (1 + used) / 2, 0.93})
                QVERIFY2(isTrack(picture.at(turn)), qPrintable(picture.at(turn).name()));
        }
    }

    void theNumberStandsBelowTheRingButAboveItAtTheBottomEdge()
    {
        PanelWorld world;
        setUsage(world, 42, 95);
        PanelUnderTest panel(world);
        QTRY_VERIFY(panel.ring()->accessibleName().endsWith(u", 42 % of the plan used"_s));
        constexpr double distance = 13 + 3.5 + 5.5;
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const RingPicture picture(world, panel);
            QCOMPARE(picture.hasTextAt(distance), edge != NotchEdge::Bottom);
            QCOMPARE(picture.hasTextAt(-distance), edge == NotchEdge::Bottom);
        }
    }

    void itTellsWhatTheSessionsDo()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        const auto picture = [&](const QString &status, const QString &said) {
            world.addSession(11, u"one"_s, status, 0s);
            world.monitor.refresh();
            if (panel.ring()->accessibleName() != u"Claude sessions: "_s + said)
                qFatal("the ring says %s", qPrintable(panel.ring()->accessibleName()));
            return RingPicture(world, panel);
        };
        QVERIFY(picture(u"idle"_s, u"idle"_s).badge() != Palette::badge);
        const RingPicture working =
            picture(u"busy"_s, u"working"_s); // motion is reduced: the arc stands still
        QCOMPARE(working.at(0.12), Palette::bronze);
        QVERIFY(working.at(0.6) != Palette::bronze);
        const RingPicture completed = picture(u"idle"_s, u"just finished"_s);
        for (const double turn : {0.1, 0.35, 0.6, 0.85})
            QCOMPARE(completed.at(turn), Palette::ample);
        world.clock.advance(2min);
        (void)picture(u"idle"_s, u"idle"_s);
        QCOMPARE(picture(u"waiting"_s, u"a session waits for you"_s).badge(), Palette::badge);
    }
};

QTEST_MAIN(TestRing)
#include "tst_ring.moc"
