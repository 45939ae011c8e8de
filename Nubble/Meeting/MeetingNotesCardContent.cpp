#include "Meeting/MeetingNotesCardContent.h"

#include <QBoxLayout>
#include <QLabel>

#include <array>
#include <chrono>

#include "Meeting/MeetingButtons.h"
#include "Meeting/MeetingNotes.h"
#include "Meeting/MeetingTexts.h"
#include "Meeting/SynthWave.h"
#include "Meeting/TimingLines.h"
#include "Widgets/Card.h"
#include "Widgets/CardHeader.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/SymbolSign.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr int gap = 6;
constexpr std::array<qsizetype, 4> longestStatus{240, 120, 60, 30}; // the first makes some eight lines

void showNote(QLabel &label, const QString &text, qsizetype longest = longestStatus.front())
{
    const bool isCut = text.size() > longest;
    label.setText(CardMetrics::breakable(isCut ? text.first(longest - 1) + u'…' : text));
    label.setToolTip(isCut ? text : QString());
    label.setVisible(!text.isEmpty());
}

} // namespace

MeetingNotesCardContent::MeetingNotesCardContent(
    MeetingNotes &notes, const Clock &clock, const CardRoom &room)
    : QWidget(room.panel), m_notes(notes), m_clock(clock), m_room(room.height),
      m_header(new CardHeader(u"Meeting Notes"_s, this)),
      m_close(new NotchButton(u"xmark"_s, u"Close"_s, m_header)), m_body(new QVBoxLayout),
      m_doc(new QLabel(this)), m_openDoc(new SmallButton(u"Open"_s, this)),
      m_pasteLink(new SmallButton(u"Paste link"_s, this)), m_status(CardMetrics::makeNote(this)),
      m_linkHint(CardMetrics::makeNote(this)), m_othersHint(CardMetrics::makeNote(this)),
      m_timing(new TimingLines(this)), m_wave(new SynthWave(notes.mic(), this)), m_big(new BigButton(this)),
      m_updateNow(new UpdateNowButton(this))
{
    connect(m_close, &NotchButton::clicked, this, room.close);
    m_header->addAccessory(m_close);
    QVBoxLayout *layout = CardMetrics::makeLayout(this);
    layout->addWidget(m_header);
    m_body->setContentsMargins(Units::px(this, CardMetrics::textMargins));
    m_body->setSpacing(Units::px(this, CardMetrics::spacing + 3));
    layout->addLayout(m_body);
    m_body->addLayout(makeDocRow());
    for (QWidget *part :
         std::initializer_list<QWidget *>{m_timing, m_wave, m_status, m_linkHint, m_othersHint})
        m_body->addWidget(part);
    m_body->addLayout(makeButtons());

    m_tick.callOnTimeout(this, &MeetingNotesCardContent::updateTiming);
    connect(m_openDoc, &QAbstractButton::clicked, &notes, &MeetingNotes::openDoc);
    connect(m_pasteLink, &QAbstractButton::clicked, &notes, &MeetingNotes::pasteLink);
    connect(m_big, &QAbstractButton::clicked, this, &MeetingNotesCardContent::press);
    connect(m_updateNow, &QAbstractButton::clicked, &notes, &MeetingNotes::updateNow);
    connect(&notes, &MeetingNotes::changed, this, &MeetingNotesCardContent::follow);
    follow();
}

QLayout *MeetingNotesCardContent::makeDocRow()
{
    m_doc->setTextFormat(Qt::PlainText);
    m_doc->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QPalette colours = m_doc->palette();
    colours.setColor(QPalette::WindowText, Palette::textPrimary);
    m_doc->setPalette(colours);
    auto *name = new QHBoxLayout;
    name->setSpacing(Units::px(this, 7));
    name->addWidget(new SymbolSign(u"doc.text"_s, 14, Palette::textSecondary));
    name->addWidget(m_doc, 1);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Units::px(this, gap));
    buttons->addWidget(m_openDoc);
    buttons->addWidget(m_pasteLink);
    buttons->addStretch();
    auto *row = new QVBoxLayout;
    row->setSpacing(Units::px(this, 8));
    row->addLayout(name);
    row->addLayout(buttons);
    return row;
}

// Beside each other where the font leaves room for what they may say.
QLayout *MeetingNotesCardContent::makeButtons()
{
    const bool fits = m_big->widest() + gap + m_updateNow->widest() <= CardMetrics::textWidth;
    auto *row = new QBoxLayout(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    row->setContentsMargins(0, Units::px(this, 3), 0, 0);
    row->setSpacing(Units::px(this, gap));
    row->addWidget(m_big, 1);
    row->addWidget(m_updateNow);
    if (fits)
        m_updateNow->setFixedWidth(Units::px(this, m_updateNow->widest()));
    return row;
}

void MeetingNotesCardContent::follow()
{
    const MeetingState &state = m_notes.state();
    const bool recording = state.phase == MeetingState::Phase::Recording;
    m_header->setDetail(phaseWord(state));
    const QString doc = docLabel(state);
    QFont font = Typography::rowTitle();
    if (!state.tabTitle) // Inter would make a sign for multiplication of an x between digits
        font.setStyleStrategy(
            static_cast<QFont::StyleStrategy>(font.styleStrategy() | QFont::PreferNoShaping));
    m_doc->setFont(Units::px(this, font));
    m_doc->setText(QFontMetrics(m_doc->font())
                       .elidedText(
                           doc, state.tabTitle ? Qt::ElideRight : Qt::ElideMiddle,
                           Units::px(this, CardMetrics::textWidth - 21)));
    m_doc->setToolTip(m_doc->text() == doc ? QString() : doc);
    m_doc->setAccessibleName(doc);
    m_openDoc->setVisible(isDocTabLink(state.link));
    m_pasteLink->setEnabled(state.phase == MeetingState::Phase::Idle);
    showNote(*m_linkHint, linkHint(state));
    showNote(*m_othersHint, othersHint(state));
    m_wave->setVisible(recording);
    m_big->show(state.isRunning(), state.phase == MeetingState::Phase::Finishing);
    m_updateNow->show(state.updating, m_notes.canUpdateNow());
    updateTiming();
    showStatus(statusText(state));
    if (!state.startedAt)
        m_tick.stop();
    else if (!m_tick.isActive())
        m_tick.start(1s);
}

// A small screen shows less of it: the buttons below must stay within reach.
void MeetingNotesCardContent::showStatus(const QString &status)
{
    for (const qsizetype longest : longestStatus) {
        showNote(*m_status, status, longest);
        m_body->invalidate(); // a layout within another learns of it only when it is laid out
        if (layout()->totalHeightForWidth(width()) <= m_room)
            break;
    }
}

void MeetingNotesCardContent::updateTiming()
{
    const QString timing = timingText(m_notes.state(), m_clock.now());
    m_timing->setText(timing);
    m_timing->setVisible(!timing.isEmpty());
}

void MeetingNotesCardContent::press()
{
    const MeetingState &state = m_notes.state();
    const auto truth = [](bool value) { return value ? u"true"_s : u"false"_s; };
    const bool finishing = state.phase == MeetingState::Phase::Finishing;
    const bool running = state.isRunning();
    m_notes.trace(
        u"big button tapped: running="_s + truth(running) + u" finishing=" + truth(finishing) + u" enabled="
        + truth(m_big->isEnabled()));
    if (running)
        m_notes.stop();
    else
        m_notes.start();
}

} // namespace nubble
