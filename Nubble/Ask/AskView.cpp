#include "Ask/AskView.h"

#include <QScrollBar>
#include <QStackedLayout>
#include <QVBoxLayout>

#include <algorithm>

#include "Ask/AskClaude.h"
#include "Ask/AskTexts.h"
#include "Ask/Composer.h"
#include "Ask/EmptyConversation.h"
#include "Ask/ReplyFooter.h"
#include "Ask/ScreenChip.h"
#include "Platform/DesktopPreferences.h"
#include "Shell/HotKeyTable.h"
#include "Thread/RowBox.h"
#include "Thread/ThreadView.h"
#include "Widgets/CardHeader.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/FloatingFrame.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int margin = 14;
constexpr int headerButton = 24;

ThreadMessage shown(const AskMessage &message)
{
    const bool asks = message.role == AskMessage::Role::User;
    return {
        .kind = asks ? ThreadMessage::Kind::Question : ThreadMessage::Kind::Reply,
        .text = message.text,
        .picture = message.thumbnail,
        .caption = message.context.value_or(QString())};
}

} // namespace

AskView::AskView(AskClaude &ask, const DesktopPreferences &preferences, QWidget *parent)
    : QWidget(parent), m_ask(ask), m_preferences(preferences), m_chip(new ScreenChip),
      m_composer(new Composer(m_chip, this)), m_header(makeHeader()), m_empty(new EmptyConversation(this)),
      m_thread(new ThreadView(this)), m_footer(new ReplyFooter), m_stack(new QStackedLayout)
{
    setFocusProxy(m_composer);
    m_thread->setFooter(m_footer);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, margin - 4, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(m_header);
    auto *within = new QVBoxLayout;
    within->setContentsMargins(FloatingFrame::rim, 0, FloatingFrame::rim, 0);
    within->addLayout(m_stack);
    layout->addLayout(within, 1);
    auto *foot = new QVBoxLayout;
    foot->setContentsMargins(margin, 0, margin, margin);
    foot->addWidget(m_composer);
    layout->addLayout(foot);
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_thread);

    for (const AskMessage &message : m_ask.messages())
        m_thread->append(shown(message));
    finishReply();
    followTurns();
    followState();
    showState();
}

QWidget *AskView::makeHeader()
{
    auto *header = new CardHeader(u"Ask Claude"_s, this);
    constexpr int fromRim = 12; // of the last button
    header->setContentsMargins(
        FloatingFrame::rim + RowBoxes::side, 0, fromRim - (CardMetrics::headerHeight - headerButton) / 2, 0);
    const auto add = [header, this](const QString &symbol, const QString &help, auto wanted) {
        auto *button = new NotchButton(symbol, help);
        button->setSide(headerButton);
        header->addAccessory(button);
        connect(button, &QAbstractButton::clicked, this, wanted);
    };
    add(u"square.and.pencil"_s, u"New conversation"_s, &AskView::newConversationWanted);
    add(u"camera.viewfinder"_s, u"Take a new screenshot  "_s + keysText(HotKey::Screenshot),
        &AskView::screenshotWanted);
    add(u"xmark"_s, u"Close"_s, &AskView::closeWanted);
    return header;
}

void AskView::followTurns()
{
    connect(&m_ask, &AskClaude::turnBegun, this, [this] {
        const QList<AskMessage> &messages = m_ask.messages();
        m_thread->append(shown(messages.at(messages.size() - 2)));
        m_thread->append(shown(messages.last()));
        m_thread->scrollToEnd();
    });
    connect(&m_ask, &AskClaude::replyGrew, this, [this](const QString &text) {
        m_thread->appendText(text);
        showAwaited();
    });
    connect(&m_ask, &AskClaude::replyReplaced, this, [this] {
        m_thread->setText(m_ask.messages().last().text);
        showAwaited();
    });
    connect(&m_ask, &AskClaude::replyRemoved, m_thread, &ThreadView::removeLast);
    connect(&m_ask, &AskClaude::wasReset, m_thread, &ThreadView::clear);
    connect(m_thread, &ThreadView::linkActivated, this, &AskView::linkActivated);
}

void AskView::followState()
{
    connect(&m_ask, &AskClaude::busyChanged, this, &AskView::finishReply);
    for (const auto changed :
         {&AskClaude::turnBegun, &AskClaude::wasReset, &AskClaude::busyChanged, &AskClaude::problemChanged,
          &AskClaude::attachmentChanged, &AskClaude::capturingChanged})
        connect(&m_ask, changed, this, &AskView::showState);
    connect(&m_ask, &AskClaude::capturingChanged, this, &AskView::sendWhenSeen);
    connect(&m_preferences, &DesktopPreferences::reducedMotionChanged, this, &AskView::showState);
    connect(&m_ask, &AskClaude::wasReset, this, [this] { m_sendsWhenSeen = false; });
    connect(m_chip, &ScreenChip::removed, this, [this] {
        m_composer->setFocus(); // before what has it is hidden
        m_ask.setAttachment({});
    });
    connect(m_empty, &EmptyConversation::suggested, this, [this](const QString &question) {
        m_composer->setFocus();
        m_composer->setText(question);
        send();
    });
    connect(m_composer, &Composer::sent, this, &AskView::send);
    connect(m_composer, &Composer::stopped, &m_ask, &AskClaude::stop);
    connect(m_composer, &Composer::scrolled, m_thread, [this](int pages) {
        m_thread->verticalScrollBar()->triggerAction(
            pages < 0 ? QAbstractSlider::SliderPageStepSub : QAbstractSlider::SliderPageStepAdd);
    });
    connect(m_composer, &Composer::recalled, this, [this] {
        const auto &messages = m_ask.messages();
        const auto last = std::find_if(messages.crbegin(), messages.crend(), [](const AskMessage &each) {
            return each.role == AskMessage::Role::User;
        });
        if (last != messages.crend())
            m_composer->setText(last->text);
    });
}

// If it has come to its end: the last message is the question when there is none.
void AskView::finishReply()
{
    const QList<AskMessage> &messages = m_ask.messages();
    if (!m_ask.isBusy() && !messages.isEmpty() && messages.last().role == AskMessage::Role::Assistant)
        m_thread->finishLast();
}

void AskView::showState()
{
    m_stack->setCurrentIndex(m_ask.messages().isEmpty() ? 0 : 1);
    m_empty->setInvitation(invitation(m_ask.attachment(), m_ask.isCapturing()));
    m_chip->show(m_ask.attachment(), m_ask.isCapturing());
    m_composer->setBusy(m_ask.isBusy());
    m_footer->setMotionReduced(m_preferences.reducedMotion());
    showAwaited();
}

void AskView::showAwaited()
{
    const bool awaits =
        m_ask.isBusy() && !m_ask.messages().isEmpty() && m_ask.messages().last().text.isEmpty();
    m_footer->show(awaits, m_ask.problem());
}

void AskView::send()
{
    m_sendsWhenSeen = m_ask.isCapturing();
    if (m_sendsWhenSeen || m_ask.isBusy())
        return;
    const QString question = m_composer->text();
    m_composer->setText({});
    m_ask.send(question);
}

void AskView::sendWhenSeen()
{
    if (!m_ask.isCapturing() && m_sendsWhenSeen)
        send();
}

} // namespace nubble
