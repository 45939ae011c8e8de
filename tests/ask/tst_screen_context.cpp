#include <QBuffer>
#include <QTest>

#include "Ask/ScreenCapturer.h"
#include "support/FakeScreenCapture.h"
#include "support/FakeWorkspace.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

QImage plain(const QSize &size, const QColor &colour = Qt::red)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

bool isAbout(const QColor &colour, const QColor &expected)
{
    return std::abs(colour.red() - expected.red()) < 8 && std::abs(colour.green() - expected.green()) < 8
        && std::abs(colour.blue() - expected.blue()) < 8;
}

} // namespace

class TestScreenContext : public QObject {
    Q_OBJECT

private:
    FakeWorkspace m_workspace;
    FakeScreenCapture m_screen;
    const RunningApplication m_terminal{42, u"XTerm"_s, u"xterm"_s};

private Q_SLOTS:
    void init()
    {
        m_workspace = {};
        m_screen = {};
        m_screen.picture = plain({40, 30});
    }

    void theLabelIsMadeOfWhatIsKnown()
    {
        using Name = std::optional<QString>;
        for (const auto &[app, title, label] :
             {std::tuple<Name, Name, QString>(u"a"_s, u"b"_s, u"a — b"_s),
              {u"a"_s, {}, u"a"_s},
              {u"a"_s, QString(), u"a"_s},
              {{}, u"b"_s, u"b"_s},
              {QString(), {}, {}}})
            QCOMPARE((ScreenContext{{}, {}, app, title}.label()), label);
    }

    void aPictureIsSentNoLargerThanItNeedsToBe()
    {
        QVERIFY(!encodeScreenshot({}));
        for (const auto &[size, sent, small] :
             {std::tuple(QSize(3840, 2160), QSize(1568, 882), QSize(400, 225)),
              {{1568, 3}, {1568, 3}, {400, 1}},
              {{1081, 1921}, {882, 1568}, {225, 400}},
              {{30'000, 1}, {1568, 1}, {400, 1}},
              {{1, 1}, {1, 1}, {1, 1}}}) {
            const Screenshot screenshot = encodeScreenshot(plain(size)).value();
            const QImage decoded = QImage::fromData(screenshot.jpeg, "JPEG");
            QCOMPARE(decoded.size(), sent);
            QVERIFY(isAbout(decoded.pixelColor(0, 0), Qt::red));
            QCOMPARE(screenshot.thumbnail.size(), small);
        }
    }

    void aPictureIsScaledSmoothlyAndOfTheQualityThatIsAskedFor()
    {
        QImage stripes = plain({3136, 100}, Qt::white);
        for (int x = 0; x < stripes.width(); x += 2)
            for (int y = 0; y < stripes.height(); ++y)
                stripes.setPixel(x, y, qRgb(0, 0, 0));
        QVERIFY(isAbout(
            QImage::fromData(encodeScreenshot(stripes)->jpeg).pixelColor(700, 20), QColor(127, 127, 127)));
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(stripes.copy(0, 0, 1000, 100).save(&buffer, "JPEG", 80));
        QCOMPARE(encodeScreenshot(stripes.copy(0, 0, 1000, 100))->jpeg, buffer.data());
    }

    void capturesComeOneAfterAnotherWithTheNamesOfTheirTime()
    {
        ScreenCapturer capturer(m_workspace, m_screen);
        QList<ScreenContext> done;
        int looked = 0;
        const auto capture = [&](const std::optional<RunningApplication> &front) {
            capturer.capture(
                front, [&](const ScreenContext &each) { done += each; }, [&] { ++looked; });
        };
        m_workspace.titles = {{42, u"a\n\u202Etitle\t "_s}};
        capture(m_terminal);
        QCOMPARE(looked, 1); // the window may come back
        m_workspace.titles = {{42, u"another"_s}};
        capture(RunningApplication{42, {}, u"xterm"_s});
        m_workspace.titles = {};
        capture(std::nullopt);
        QCOMPARE(m_screen.grabs, 1);
        QVERIFY(done.isEmpty());
        m_screen.picture = plain({20, 10}, Qt::blue);
        QTRY_COMPARE(done.size(), 3);

        QCOMPARE(done.at(0).label(), u"XTerm — a title"_s);
        QCOMPARE(done.at(1).label(), u"xterm — another"_s);
        QCOMPARE(done.at(2).label(), QString());
        QCOMPARE(done.at(0).thumbnail.size(), QSize(40, 30));
        QVERIFY(isAbout(done.at(2).thumbnail.pixelColor(5, 5), Qt::blue));
        QCOMPARE(done.at(2).jpeg, encodeScreenshot(m_screen.picture)->jpeg);
        QCOMPARE(looked, 3);
    }

    void withoutThePermissionThereIsOnlyTheApplicationsName()
    {
        m_workspace.titles = {{42, u"title"_s}};
        for (const bool allowed : {false, true}) { // but nothing comes
            m_screen.allowed = allowed;
            m_screen.picture = {};
            ScreenCapturer capturer(m_workspace, m_screen);
            std::optional<ScreenContext> done;
            capturer.capture(m_terminal, [&](const ScreenContext &each) { done = each; });
            QVERIFY(!done);
            QTRY_VERIFY(done);
            QCOMPARE(done->jpeg, std::nullopt);
            QVERIFY(done->thumbnail.isNull());
            QCOMPARE(done->label(), allowed ? u"XTerm — title"_s : u"XTerm"_s);
            QCOMPARE(m_screen.grabs, allowed ? 1 : 0);
        }
    }

    void nobodyIsCalledOnceItHasGone()
    {
        int called = 0;
        auto capturer = std::make_unique<ScreenCapturer>(m_workspace, m_screen);
        const auto count = [&](const ScreenContext &) { ++called; };
        capturer->capture(m_terminal, count);
        capturer->capture(m_terminal, count);
        capturer.reset();
        QCoreApplication::processEvents();
        QCOMPARE(called, 0);

        for (const bool atOnce : {true, false}) {
            capturer = std::make_unique<ScreenCapturer>(m_workspace, m_screen);
            const auto end = [&] { capturer.reset(); };
            capturer->capture(
                m_terminal, [&](const ScreenContext &) { end(); }, atOnce ? end : std::function<void()>());
            if (capturer)
                capturer->capture(m_terminal, count);
            QTRY_VERIFY(!capturer);
            QCoreApplication::processEvents();
            QCOMPARE(called, 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestScreenContext)
#include "tst_screen_context.moc"
