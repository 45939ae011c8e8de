#include "Search/ThreadPage.h"

#include <QVBoxLayout>

#include "Search/ChatTexts.h"
#include "Search/ThreadHeader.h"
#include "Thread/ThreadRows.h"
#include "Thread/ThreadView.h"
#include "Widgets/FloatingFrame.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

ThreadRows cut(const ChatThread &thread)
{
    QList<ThreadMessage> messages;
    messages.reserve(thread.messages.size());
    for (const ChatThread::Message &each : thread.messages)
        messages.append(
            {.kind = each.me ? ThreadMessage::Kind::Question : ThreadMessage::Kind::Reply,
             .text = each.text,
             .picture = {},
             .caption = {}});
    return ThreadRows::of(messages);
}

} // namespace

ThreadPage::ThreadPage(QWidget *parent)
    : QWidget(parent), m_header(new ThreadHeader(this)), m_messages(new ThreadView(this)),
      m_cutter(u"thread"_s)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_header);
    auto *within = new QVBoxLayout;
    within->setContentsMargins(FloatingFrame::rim, 0, FloatingFrame::rim, 10); // nor the rounded corners
    within->addWidget(m_messages);
    layout->addLayout(within, 1);
    connect(m_header, &ThreadHeader::backWanted, this, &ThreadPage::backWanted);
    connect(m_header, &ThreadHeader::stepWanted, this, &ThreadPage::stepWanted);
    connect(m_header, &ThreadHeader::openWanted, this, &ThreadPage::openWanted);
    connect(m_messages, &ThreadView::linkActivated, this, &ThreadPage::linkActivated);
}

void ThreadPage::setThread(const ChatThread &thread, const TextMatcher &matcher, const QString &date)
{
    m_isReady = false;
    const auto show = [this, asked = ++m_asked, thread, matcher, date](const ThreadRows &rows) {
        if (asked != m_asked)
            return;
        m_thread = thread;
        m_isReady = true;
        m_header->setThread(thread, date);
        m_messages->setMatcher(matcher);
        m_messages->setRows(rows);
        Q_EMIT ready(); // who shows the page gives it its size
        showHit(m_hit);
    };
    m_hit = 0;
    m_cutter.addLatest([thread](const std::stop_token &) { return cut(thread); }, show);
}

void ThreadPage::clear()
{
    ++m_asked;
    m_isReady = false;
    m_thread = {};
    m_messages->setRows({});
}

void ThreadPage::showHit(qsizetype hit)
{
    m_hit = hit;
    if (!m_isReady)
        return;
    m_header->setMatch(matchText(hit, m_thread.hits.size()));
    if (hit < m_thread.hits.size())
        m_messages->showMessage(static_cast<int>(m_thread.hits.at(hit)));
}

} // namespace nubble
