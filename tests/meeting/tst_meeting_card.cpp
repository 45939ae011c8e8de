#include <QAbstractButton>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <csignal>

#include "Meeting/MeetingCard.h"
#include "Meeting/MeetingNotes.h"
#include "Meeting/SynthWave.h"
#include "Meeting/TimingLines.h"
#include "Notch/ActionsCell.h"
#include "Notch/NotchAction.h"
#include "Placement/Layout.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Shell/Defaults.h"
#include "Widgets/CardHeader.h"
#include "Widgets/TooltipShell.h"
#include "meeting/RecorderStandIn.h"
#include "support/FakeAudioInput.h"
#include "support/ManualClock.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class PaintCount : public QObject {
public:
    explicit PaintCount(QWidget &widget) { widget.installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

} // namespace

class MeetingCardTest : public QObject {
    Q_OBJECT

private:
    [[nodiscard]] QAbstractButton *button(const QString &name) const
    {
        for (auto *button : m_shell->findChildren<QAbstractButton *>())
            if (button->accessibleName() == name && button->isVisible())
                return button;
        return nullptr;
    }
    [[nodiscard]] bool says(const QString &text) const
    {
        for (const QLabel *label : m_shell->findChildren<QLabel *>())
            if (label->isVisible() && QString(label->text()).remove(QChar(0x200b)) == text)
                return true;
        return false;
    }
    [[nodiscard]] QString timing() const
    {
        const auto *lines = m_shell->findChild<TimingLines *>();
        return lines->isVisible() ? lines->accessibleName() : QString();
    }
    [[nodiscard]] SynthWave *wave() const { return m_shell->findChild<SynthWave *>(); }
    void click(const QString &name) const
    {
        QVERIFY2(button(name) && button(name)->isEnabled(), qPrintable(name));
        QTest::mouseClick(button(name), Qt::LeftButton);
    }

    std::optional<TemporaryHome> m_home;
    std::optional<RecorderStandIn> m_recorder;
    std::optional<Defaults> m_defaults;
    LinuxProcessTable m_processes;
    ManualClock m_clock;
    FakeAudioInput m_microphone;
    QString m_clipboard;
    QStringList m_opened;
    int m_closed = 0;
    std::unique_ptr<MeetingNotes> m_notes;
    std::unique_ptr<TooltipShell> m_shell;

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        m_recorder.emplace(*m_home);
        m_defaults.emplace(m_home->path(u"defaults.conf"_s));
        m_clipboard.clear();
        m_opened.clear();
        m_notes = std::make_unique<MeetingNotes>(
            m_home->home(), *m_defaults, m_clock,
            MeetingNotes::Surroundings{
                .processes = m_processes,
                .microphone = m_microphone,
                .clipboardText = [this] { return m_clipboard; },
                .openLink = [this](const QUrl &url) { m_opened += url.toString(); },
                .pgrep = m_recorder->pgrep()},
            MeetingNotes::Pace{.poll = 1h, .patience = 20s});
        m_shell = std::make_unique<TooltipShell>(
            meetingCard(*m_notes, m_clock).makeContent({.height = 700, .close = [this] { ++m_closed; }}),
            NotchEdge::Right, false);
        connect(m_shell.get(), &TooltipShell::contentResized, this, [this] {
            m_shell->resize(m_shell->sizeHint());
        });
        m_shell->show();
    }
    void cleanup()
    {
        m_shell.reset();
        if (const pid_t pid = m_recorder->pid())
            ::kill(pid, SIGKILL);
        m_notes.reset();
    }

    void theLinkIsPastedAndOpened()
    {
        QVERIFY(says(u"No Doc yet"_s) && !button(u"Open"_s));
        QVERIFY(says(u"Copy the week's agenda tab link (it ends in ?tab=…), then Paste link."_s));
        click(u"Start recording"_s);
        QVERIFY(says(u"Paste the agenda tab's link first."_s));
        m_clipboard = u"https://docs.google.com/document/d/1a/edit?tab=t.7"_s;
        click(u"Paste link"_s);
        QVERIFY(says(u"Link set. Press Start when the meeting begins."_s) && says(u"Doc tab t.7"_s));
        QVERIFY(!says(u"Copy the week's agenda tab link (it ends in ?tab=…), then Paste link."_s));
        click(u"Open"_s);
        QCOMPARE(m_opened, QStringList{m_clipboard});
        click(u"Close"_s);
        QCOMPARE(m_closed, 1);
        QVERIFY(!button(u"Update now"_s)->isEnabled());
    }

    void aRecordingIsShownUntilItsEnd()
    {
        m_clipboard = u"https://docs.google.com/document/d/1a/edit?tab=t.7"_s;
        m_notes->pasteLink();
        m_recorder->follow("say('next ' + (1790000000000 + 90500));"
                           "finish = () => { say('updated: It is ' + 'x'.repeat(400)); setTimeout(() => "
                           "process.exit(0), 300); };");
        QVERIFY(timing().isEmpty() && !wave()->isVisible());
        click(u"Start recording"_s);
        QTRY_COMPARE(timing(), u"Recording 0:00 · next update in 1:31"_s);
        QVERIFY(button(u"Stop"_s) && wave()->isVisible() && !button(u"Paste link"_s)->isEnabled());
        QCOMPARE(m_shell->findChild<CardHeader *>()->accessibleName(), u"Meeting Notes, recording"_s);
        QCOMPARE(wave()->accessibleName(), u"Listening"_s);
        m_clock.advance(65s);
        QTRY_COMPARE(timing(), u"Recording 1:05 · next update in 0:26"_s); // within its second
        click(u"Update now"_s);
        QVERIFY(timing().endsWith(u"updating Doc now…"));
        const auto heightWhereThereIs = [this](int room) {
            const std::unique_ptr<QWidget> card(
                meetingCard(*m_notes, m_clock).makeContent({.height = room, .close = {}}));
            return card->heightForWidth(card->width());
        };
        QVERIFY(heightWhereThereIs(0) <= Layout::tallestStillCard);
        QVERIFY(button(u"Updating…"_s) && !button(u"Updating…"_s)->isEnabled());
        click(u"Stop"_s);
        QVERIFY(button(u"Finishing…"_s) && !button(u"Finishing…"_s)->isEnabled() && !wave()->isVisible());
        QTRY_VERIFY(timing().endsWith(u"writing final notes…\nDoc updated just now"));
        const auto fit = [this] { // a long status too, whose one word is broken
            const auto labels = m_shell->findChildren<QLabel *>();
            return std::all_of(labels.begin(), labels.end(), [](const QLabel *label) {
                return !label->isVisible() || label->heightForWidth(label->width()) <= label->height();
            });
        };
        QTRY_VERIFY(fit());
        QVERIFY(says(u"Updated It is "_s + QString(225, u'x') + u'…'));
        const int height = heightWhereThereIs(700);
        QVERIFY(heightWhereThereIs(height - 20) <= height - 20);
        QTRY_VERIFY(button(u"Start recording"_s));
        QVERIFY(timing().isEmpty());
        const QByteArray log = m_home->read(u".quib-live/notch.log"_s);
        QVERIFY(log.contains("big button tapped: running=false finishing=false enabled=true\n"));
        QVERIFY(log.contains("big button tapped: running=true finishing=false enabled=true\n"));
    }

    void theWaveIsDrawnAsItIsHeardAndOnlyWhileSeen()
    {
        m_clipboard = u"https://docs.google.com/document/d/1a/edit?tab=t.7"_s;
        m_notes->pasteLink();
        click(u"Start recording"_s);
        QTRY_VERIFY(wave()->isVisible());
        const QImage still = wave()->grab().toImage();
        const std::vector<float> loud(AudioInput::bufferFrames, 1.0F);
        PaintCount count(*wave());
        for (int i = 0; i < 8; ++i) { // as many bars, however often it is told
            m_clock.advance(40ms);
            m_microphone.receiver.buffer(loud);
            QCoreApplication::processEvents();
        }
        QTRY_COMPARE(wave()->accessibleName(), u"Hearing speech"_s);
        QVERIFY(count.paints > 0 && count.paints <= 5);
        const QImage drawn = wave()->grab().toImage();
        QVERIFY(drawn != still);
        QCOMPARE(drawn.copy(0, 0, 100, 40), still.copy(0, 0, 100, 40)); // the newest is at the right
        m_shell->hide();
        count.paints = 0;
        for (int i = 0; i < 5; ++i) {
            m_clock.advance(100ms);
            m_microphone.receiver.buffer(loud);
            QCoreApplication::processEvents();
        }
        QCOMPARE(count.paints, 0);
    }

    void theButtonPulsesWhileItIsSeenAndMayMove()
    {
        NotchAction action({u"mic.fill"_s, u"Meeting notes"_s}, [] {});
        ActionsCell cell({&action});
        cell.place({QRectF(380, 388, 40, 24)}, {400, 400}, NotchEdge::Right);
        cell.show();
        auto *button = cell.findChild<QAbstractButton *>();
        PaintCount count(*button);
        const auto moves = [&](int within = 5000) { // milliseconds
            (void)QTest::qWaitForWindowExposed(&cell, 100);
            QCoreApplication::processEvents();
            count.paints = 0;
            return QTest::qWaitFor([&] { return count.paints > 3; }, within);
        };
        QTRY_VERIFY(!moves(450)); // when the pointer, if it is there, has lifted it
        action.setLook({u"record.circle.fill"_s, u"Meeting notes — recording"_s, true});
        QCOMPARE(button->accessibleName(), u"Meeting notes — recording"_s);
        QVERIFY(moves());
        cell.setMotionReduced(true);
        QTRY_VERIFY(!moves(450));
        const QColor middle = button->grab().toImage().pixelColor(button->width() / 2, button->height() / 2);
        QVERIFY2(middle.red() > 200 && middle.green() < 120, qPrintable(middle.name()));
        cell.setMotionReduced(false);
        cell.hide();
        QTRY_VERIFY(!moves(450));
        cell.show();
        QVERIFY(moves());
        action.setLook({u"mic.fill"_s, u"Meeting notes"_s, false});
        QTRY_VERIFY(!moves(450));
    }
};

QTEST_MAIN(MeetingCardTest)
#include "tst_meeting_card.moc"
