#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

#include "Meeting/MeetingTexts.h"
#include "Meeting/MicLevel.h"
#include "Meeting/OtherRecorders.h"
#include "Meeting/RecorderLine.h"
#include "Meeting/RecorderOutput.h"
#include "support/FakeAudioInput.h"
#include "support/ManualClock.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const LevelMeter::Bars atRest{};

const QString docLink = u"https://docs.google.com/document/d/1a/edit?tab=t.0#tab=t.abc123"_s;

// "tab TITLE; next MILLISECONDS; begins or ends; written; STATUS", of which each may be missing.
QString printed(const RecorderReport &report)
{
    QStringList parts;
    if (report.tabTitle)
        parts += u"tab "_s + *report.tabTitle;
    if (report.nextUpdate)
        parts += u"next "_s + QString::number(report.nextUpdate->time_since_epoch().count());
    if (report.updating)
        parts += *report.updating ? u"begins"_s : u"ends"_s;
    if (report.hasUpdated)
        parts += u"written"_s;
    if (report.status)
        parts += u'<' + *report.status + u'>';
    return parts.join(u"; "_s);
}

QStringList linesOf(RecorderOutput &output)
{
    QStringList lines;
    while (const auto line = output.takeLine())
        lines += line->left(20);
    return lines;
}

// Counts the calls that come to an object by the event loop.
struct CallCount : QObject {
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::MetaCall;
        return false;
    }
    int count = 0;
};

std::vector<float> sine(float amplitude)
{
    std::vector<float> samples(AudioInput::bufferFrames);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = amplitude
            * std::sin(static_cast<float>(i) * 2 * std::numbers::pi_v<float> * 16
                       / static_cast<float>(samples.size()));
    return samples;
}

} // namespace

// What needs no process: parsing, texts, the rule for foreign recorders, and the meter.
class MeetingPartsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineTellsWhatTheRecorderDoes()
    {
        const std::vector<std::pair<QString, QString>> table{
            {u"10:32:05 AM updated: Decisions-and-actions"_s,
             u"ends; written; <Updated Decisions and actions>"_s},
            {u"9:02:05\u202fPM  updated:X-y"_s, u"ends; written; <Updated  y>"_s},
            {u"updated:\U0001f600-b"_s, u"ends; written; <Updated  b>"_s},
            {u"updated:"_s, u"ends; written; <Updated >"_s},
            {u"next 1700000000000"_s, u"next 1700000000000"_s},
            {u"next 1700000000000.9"_s, u"next 1700000000000"_s},
            {u"next 9e99"_s, u"<next 9e99>"_s},
            {u"next "_s + QString(400, u'9'), u"next 1000000000000000"_s},
            {u"next soon"_s, u"<next soon>"_s},
            {u"next tab \"A\" 5"_s, u"tab A; <next tab \"A\" 5>"_s},
            {u"pass"_s, u"begins"_s},
            {u"1:02:03AM pass"_s, u"begins"_s},
            {u"13:02:03 pass"_s, u"<13:02:03 pass>"_s},
            {u"passing"_s, u"<passing>"_s},
            {u"pass failed: quota"_s, u"ends; <pass failed: quota>"_s},
            {u"done."_s, u"ends; <done.>"_s},
            {u"notes unchanged since"_s, u"ends"_s},
            {u"no speech yet"_s, u"ends"_s},
            {u"recording 48000 Hz"_s, u"<Recording — first notes in about 3 minutes.>"_s},
            {u"resuming tab \"Week 12\""_s, u"tab Week 12; <Resumed this tab's earlier recording.>"_s},
            {u"tab \"Week 12\""_s, u"tab Week 12"_s},
            {u"tab \"\""_s, QString()},
            {u"1:02:03 PM \t  indented"_s, u"<indented>"_s},
            {u"  indented"_s, QString()},
            {u"writing as Team Notes"_s, u"<Connected as Team Notes.>"_s},
            {u"error: tab \"Old\" is gone"_s, u"tab Old; <tab \"Old\" is gone>"_s},
            {u"Done."_s, u"<Done.>"_s},
        };
        for (const auto &[line, report] : table)
            QCOMPARE(printed(readRecorderLine(line)), report);
    }

    void linesAreTheSameWhereverTheOutputIsCut()
    {
        const QByteArray text = "\t 1 \xe2\x80\x94 \xf0\x9f\x98\x80\t\n\n  \n\xc3\xa4\r\nrest";
        for (qsizetype size = 1; size <= text.size(); ++size) {
            RecorderOutput output;
            QByteArray logged;
            QStringList lines;
            for (qsizetype from = 0; from < text.size(); from += size) {
                logged += output.append(text.mid(from, size));
                lines += linesOf(output);
            }
            QCOMPARE(logged, text);
            QCOMPARE(lines, QStringList({u"1 — \U0001f600"_s, u"ä\r"_s}));
        }
    }

    void whatIsNoTextOrTooLongIsLeftOut()
    {
        RecorderOutput output;
        QCOMPARE(output.append("a\xe2"), "a");
        QCOMPARE(output.append("b\n"), ""); // with the character that never came
        QCOMPARE(output.append("\xff\n"), "");
        QCOMPARE(output.append("\x80\x80\x80\x80"), "");
        QCOMPARE(output.append("c\n").size(), 2);
        QCOMPARE(linesOf(output), QStringList(u"ac"_s));
        for (int i = 0; i < 100; ++i)
            QCOMPARE(output.append(QByteArray(1'000'000, 'x')).size(), 1'000'000);
        QCOMPARE(linesOf(output), QStringList());
        (void)output.append("\nnext\nbegun");
        QCOMPARE(linesOf(output), QStringList(u"next"_s));
        (void)output.append(QByteArray("a\n").repeated(50'000)); // a flood
        QCOMPARE(linesOf(output).size(), 32'767);
    }

    void onlyALinkOfOneTabWillDo()
    {
        for (const auto &[link, isTab, isDoc] :
             {std::tuple(docLink, true, true),
              {u"tab=1 docs.google.com/document/d/"_s, true, true},
              {u"https://docs.google.com/document/d/1a/edit"_s, false, true},
              {u"https://docs.google.com/spreadsheets/d/1a?tab=t.0"_s, false, false},
              {u"https://Docs.google.com/document/d/1a?tab=t.0"_s, false, false},
              {QString(), false, false}}) {
            QCOMPARE(isDocTabLink(link), isTab);
            QCOMPARE(isDocLink(link), isDoc);
        }
    }

    void theTextsTellHowItStands()
    {
        using Phase = MeetingState::Phase;
        const TimePoint now = ManualClock().now();
        MeetingState state{.link = docLink};
        QCOMPARE(docLabel(state), u"Doc tab t.abc123"_s);
        QCOMPARE(docLabel({.link = u"?tab=a"_s}), u"No Doc yet"_s);
        QVERIFY(linkHint(state).isEmpty() && !linkHint({}).isEmpty());
        QCOMPARE(phaseWord(state), u"off"_s);
        QCOMPARE(buttonHelp(state), u"Meeting notes"_s);
        QCOMPARE(timingText(state, now), QString());
        state.others = {812, 913};
        QCOMPARE(
            othersHint(state),
            u"A copy started outside the notch is running (pid 812, 913). Stop ends it."_s);
        QCOMPARE(buttonHelp(state), u"Meeting notes — external"_s);
        state = {
            .phase = Phase::Recording,
            .link = docLink,
            .tabTitle = u"Week\u202e 12"_s,
            .startedAt = now - 3599'999ms};
        QCOMPARE(docLabel(state), u"Week 12"_s);
        QCOMPARE(timingText(state, now), u"Recording 59:59"_s);
        state.nextUpdate = now + 60'001ms;
        state.lastUpdate = now - 59'999ms;
        QCOMPARE(timingText(state, now), u"Recording 59:59 · next update in 1:01\nDoc updated just now"_s);
        state.lastUpdate = now - 3min;
        QCOMPARE(
            timingText(state, now + 5min), u"Recording 1:04:59 · next update in 0:00\nDoc updated 8m ago"_s);
        state.updating = true;
        QCOMPARE(timingText(state, now - 2h), u"Recording 0:00 · updating Doc now…\nDoc updated just now"_s);
        state.phase = Phase::Finishing;
        QCOMPARE(
            timingText(state, now + 6s), u"Recording 1:00:05 · writing final notes…\nDoc updated 3m ago"_s);
        QCOMPARE(hearingText(0.15F) + hearingText(0.16F), u"ListeningHearing speech"_s);
    }

    void othersAreThoseThatAreNotOurs()
    {
        const auto process = [](pid_t pid, const QString &name, std::optional<pid_t> parent) {
            return RecorderProcess{pid, ProcessInfo{.name = name, .parent = parent}};
        };
        const QList<RecorderProcess> found{
            process(9, u"node"_s, 1),  process(8, u"ffmpeg"_s, 9), process(7, u"nodejs"_s, 1), {6, {}},
            process(5, u"node"_s, {}), process(4, u"ffmpeg"_s, 1), process(100, u"node"_s, 1)};
        for (const auto &[started, expected] :
             {std::pair(std::optional<pid_t>(), u"9, 8, 4"_s), {9, u"5, 4"_s}, {3, u"9, 8, 5, 4"_s}}) {
            QList<pid_t> pids;
            for (const RecorderProcess &each : othersAmong(found, 100, started))
                pids.append(each.pid);
            QCOMPARE(pidList(pids), expected);
        }
    }

    void aBufferIsAsLoudAsItsMeanSquare()
    {
        const std::vector<float> square(1023, -1.0F);
        const std::vector<float> nothing(1024, std::numeric_limits<float>::quiet_NaN());
        const std::vector<float> last{0, 0, 0, 0, 0.1F};
        for (const auto &[samples, value] :
             {std::pair(std::vector<float>(1024), 0.0F),
              {square, 1.0F},
              {nothing, 0.0F},
              {sine(0.01F), (10 * std::log10(0.00005F) + 55) / 40},
              {last, (10 * std::log10(0.002F) + 55) / 40}})
            QVERIFY(std::abs(LevelMeter::valueOf(samples) - value) < 1e-5F);
    }

    void aBarCarriesTheLoudestOfItsTime()
    {
        TimePoint now = m_clock.now();
        LevelMeter meter(now);
        for (const auto &[value, after, level, bar] :
             {std::tuple(0.4F, 0ms, 0.2F, 0.0F),
              {1.0F, 40ms, 0.6F, 0.0F},
              {0.0F, 39ms, 0.528F, 0.0F},
              {0.1F, 1ms, 0.47664F, 1.0F},
              {0.3F, 79ms, 0.4554432F, 1.0F},
              {0.2F, 1ms, 0.42479F, 0.3F},
              {0.5F, -1h, 0.462395F, 0.5F}}) {
            meter.take(value, now += after);
            QVERIFY(std::abs(meter.level() - level) < 1e-5F);
            QCOMPARE(meter.bars().back(), bar);
        }
        QCOMPARE(meter.bars()[LevelMeter::barCount - 3], 1.0F);
        meter.reset();
        QVERIFY(meter.level() == 0 && meter.bars() == atRest);
        QCOMPARE(MicLevel(0).bars(), atRest);
        const LevelMeter still = LevelMeter::preview(0.5F);
        QVERIFY(std::abs(still.bars()[3] - 0.301805F) < 1e-5F);
    }

    void oneCallAtATimeTakesAllThatHasCome()
    {
        FakeAudioInput input;
        MicLevel mic(input, m_clock);
        CallCount calls;
        mic.installEventFilter(&calls);
        QSignalSpy changes(&mic, &MicLevel::changed);
        QSignalSpy failures(&mic, &MicLevel::failed);
        QCOMPARE(input.streams, 0);
        mic.start();
        mic.start();
        QCOMPARE(input.streams, 1);
        m_clock.advance(80ms);
        std::thread([&] {
            for (const QString &why : {QString(), u"why"_s, u"again"_s})
                input.receiver.failed(why);
            for (const float amplitude : {0.5F, 0.01F, 0.0F})
                input.receiver.buffer(sine(amplitude));
            input.receiver.buffer({});
        }).join();
        QCoreApplication::processEvents();
        QCOMPARE(calls.count, 3 + 1);
        QCOMPARE(changes.size(), 1);
        QVERIFY(std::abs(mic.level() - (0.5F + 0.12F * (0.29974F - 0.5F)) * 0.88F) < 1e-4F);
        QCOMPARE(failures.size(), 1);
        QCOMPARE(failures.first().first(), u"why"_s);
        input.receiver.failed({}); // it does not stay as loud as it was
        QCoreApplication::processEvents();
        QVERIFY(mic.level() == 0 && mic.bars() == atRest);

        input.receiver.buffer(sine(1));
        mic.stop(); // what is on its way does not come any more
        QCOMPARE(input.streams, 0);
        mic.start();
        QCoreApplication::processEvents();
        QCOMPARE(mic.level(), 0.0F);
        for (int i = 0; i < 100; ++i) { // an hour of silence repaints nothing
            m_clock.advance(80ms);
            input.receiver.buffer(sine(0));
            QCoreApplication::processEvents();
        }
        QCOMPARE(changes.size(), 2);
        for (const auto &[after, change] :
             {std::pair(79ms, 2), {1ms, 3}}) { // but a sound is seen with its bar
            m_clock.advance(after);
            input.receiver.buffer(sine(1));
            QCoreApplication::processEvents();
            QCOMPARE(changes.size(), change);
        }
    }

private:
    ManualClock m_clock;
};

QTEST_GUILESS_MAIN(MeetingPartsTest)
#include "tst_meeting_parts.moc"
