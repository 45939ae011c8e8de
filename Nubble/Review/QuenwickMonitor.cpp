#include "Review/QuenwickMonitor.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <utility>

#include "Platform/Clock.h"
#include "Platform/Logging.h"
#include "Platform/MainThread.h"
#include "Review/ReviewReader.h"
#include "Shell/Addon.h"
#include "Shell/SerialWorker.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto pollEvery = 3s;
constexpr qsizetype largestInbox =
    2'097'152;                            // bytes; the parser takes some thirty times that of a hostile one
constexpr qsizetype longestMessage = 500; // characters

bool isSuccess(const HttpReply &reply)
{
    return reply.status >= 200 && reply.status < 300;
}

// A refusal counts when it says why.
std::optional<QuenwickAnswer> answerIn(const std::optional<HttpReply> &reply)
{
    const auto answer = reply ? parseAnswer(reply->body) : std::nullopt;
    return answer && (isSuccess(*reply) || answer->error) ? answer : std::nullopt;
}

QJsonObject keyOf(const QuenwickItem &item)
{
    return {{u"guid"_s, item.guid}, {u"source"_s, item.source}};
}

QJsonObject with(QJsonObject object, const QString &key, const QString &value)
{
    object.insert(key, value);
    return object;
}

void remove(Inbox &inbox, const QuenwickItem &item)
{
    const auto isIt = [&](const QuenwickItem &each) {
        return each.guid == item.guid && each.source == item.source;
    };
    if (const auto found = std::ranges::find_if(inbox.items, isIt); found != inbox.items.end())
        inbox.items.erase(found);
    inbox.pending = std::max(inbox.pending - 1, 0);
}

} // namespace

const QString QuenwickMonitor::identifier = u"com.brevandel.quenwick"_s;

struct QuenwickMonitor::Polling {
    Surroundings surroundings;
    ReviewReader reader; // the worker's, but for what any thread may ask
    SerialWorker worker;
};

QuenwickMonitor::QuenwickMonitor(const Home &home, Surroundings surroundings, QObject *parent)
    : QObject(parent)
{
    const ProcessTable &processes = surroundings.processes;
    m_polling.reset(new Polling{
        .surroundings = std::move(surroundings),
        .reader = ReviewReader(quenwickFolder(home), processes),
        .worker = SerialWorker(u"QuenwickMonitor"_s)});
    refresh();
    auto *timer = new QTimer(this);
    timer->callOnTimeout(this, &QuenwickMonitor::refresh);
    timer->start(pollEvery);
}

QuenwickMonitor::QuenwickMonitor(ReviewState sample, QObject *parent)
    : QObject(parent), m_state(std::move(sample))
{
}

QuenwickMonitor::~QuenwickMonitor() = default;

void QuenwickMonitor::refresh()
{
    if (m_polling && !m_isPolling)
        poll();
}

// Whatever an earlier poll is about to find is late.
void QuenwickMonitor::poll()
{
    assertMainThread("Nubble/Review/QuenwickMonitor");
    ++m_generation;
    delete m_fetch;
    m_showsDatabase = m_showsDatabase && !m_isPolling; // what the reader has read meanwhile is not shown
    ReviewState next = m_state;
    next.installed = m_polling->reader.isInstalled();
    m_isPolling = next.installed;
    publish(next);
    if (!m_isPolling)
        return;
    onWorker(
        [this, day = today(), afresh = !m_showsDatabase](const std::stop_token &stop) {
            return m_polling->reader.look(day, afresh, stop);
        },
        [this](const ReviewLook &look) { accept(look); });
}

template <typename Work, typename Publish> void QuenwickMonitor::onWorker(Work work, Publish publish)
{
    m_polling->worker.add(
        std::move(work), [this, generation = m_generation, publish = std::move(publish)](const auto &result) {
            if (generation == m_generation)
                publish(result);
        });
}

QDateTime QuenwickMonitor::today() const
{
    return localTime(m_polling->surroundings.clock.now()).date().startOfDay();
}

void QuenwickMonitor::accept(const ReviewLook &look)
{
    if (look.live) {
        fetchLive(*look.live);
        return;
    }
    m_live.reset();
    acceptDatabase(look);
}

void QuenwickMonitor::acceptDatabase(const ReviewLook &look)
{
    m_isPolling = false;
    m_showsDatabase = m_showsDatabase || look.inbox;
    ReviewState next = m_state;
    next.live = false;
    show(look.inbox, next);
}

void QuenwickMonitor::fetchLive(const LiveState &live)
{
    LoopbackRequest::Limits limits = m_polling->surroundings.limits;
    limits.body = largestInbox;
    auto *request = new LoopbackRequest(live.port, "/api/notch", std::nullopt, limits, this);
    m_fetch = request;
    connect(request, &LoopbackRequest::finished, this, [=, this](const std::optional<HttpReply> &reply) {
        request->deleteLater();
        const QByteArray json = reply && isSuccess(*reply) ? reply->body : QByteArray();
        onWorker(
            [json](const std::stop_token &) { return parseInbox(json); },
            [this, live](const std::optional<Inbox> &inbox) { acceptLive(live, inbox); });
    });
}

void QuenwickMonitor::acceptLive(const LiveState &live, const std::optional<Inbox> &inbox)
{
    ReviewState next = m_state;
    next.live = inbox.has_value();
    if (!inbox) {
        publish(next);
        onWorker(
            [this, day = today(), afresh = !m_showsDatabase](const std::stop_token &stop) {
                return m_polling->reader.readDatabase(day, afresh, stop);
            },
            [this](const ReviewLook &look) { acceptDatabase(look); });
        return;
    }
    m_isPolling = false;
    m_live = live;
    m_showsDatabase = false;
    show(inbox, next);
}

// The list is what it was when there is no newer one.
void QuenwickMonitor::show(const std::optional<Inbox> &inbox, ReviewState next)
{
    if (inbox) {
        next.inbox = *inbox;
        const auto isUndecided = [&](const QuenwickItem &each) { return m_unanswered.contains(each.id()); };
        if (std::ranges::any_of(inbox->items, isUndecided))
            next.lastMessage = unansweredText();
        m_unanswered.clear();
    }
    publish(next);
}

void QuenwickMonitor::publish(const ReviewState &next)
{
    if (next == m_state)
        return;
    if (next.live != m_state.live)
        qCDebug(logReview) << (next.live ? "Quenwick answers" : "Quenwick does not answer");
    m_state = next;
    Q_EMIT changed();
}

void QuenwickMonitor::refreshNow()
{
    assertMainThread("Nubble/Review/QuenwickMonitor");
    refresh();
    if (!isReachable() || m_state.checking)
        return;
    ReviewState next = m_state;
    next.checking = true;
    publish(next);
    post("/api/scan", {}, [this](const std::optional<QuenwickAnswer> &answer) {
        ReviewState checked = m_state;
        checked.checking = false;
        checked.lastMessage = scanText(answer).left(longestMessage);
        publish(checked);
        poll();
    });
}

void QuenwickMonitor::perform(ReviewAction action, const QuenwickItem &item)
{
    assertMainThread("Nubble/Review/QuenwickMonitor");
    if (!isReachable()) {
        openApp();
    } else if (m_state.busy.contains(item.id())) {
        return;
    } else if (action == ReviewAction::Calendar) {
        post("/api/focus", with(keyOf(item), u"action"_s, u"schedule"_s), [this](const auto &) {
            ReviewState next = m_state;
            next.lastMessage = handOverText();
            publish(next);
            openApp();
        });
    } else {
        begin(item);
        decide(item, action, [this, item, action](const std::optional<QuenwickAnswer> &answer) {
            finish(item, describe(action, answer), answer.has_value());
        });
    }
}

void QuenwickMonitor::schedule(const QuenwickItem &item)
{
    assertMainThread("Nubble/Review/QuenwickMonitor");
    if (!isReachable()) {
        openApp();
        return;
    }
    if (m_state.busy.contains(item.id()))
        return;
    begin(item);
    post("/api/schedule", with(keyOf(item), u"to"_s, u"calendar"_s), [this, item](const auto &answer) {
        const QString text = describe(ReviewAction::Calendar, answer);
        if (!answer || answer->error)
            finish(item, text, answer.has_value());
        else
            decide(item, ReviewAction::Approve, [this, item, text](const auto &approval) {
                finish(item, text, approval.has_value());
            });
    });
}

void QuenwickMonitor::openApp()
{
    assertMainThread("Nubble/Review/QuenwickMonitor");
    if (!m_polling)
        return;
    const Surroundings &surroundings = m_polling->surroundings;
    const auto process = m_live ? std::optional(m_live->pid) : std::nullopt;
    if (surroundings.openApplication(identifier, process) || !m_live)
        return;
    surroundings.openUrl(QUrl(u"http://127.0.0.1:%1"_s.arg(m_live->port)));
}

bool QuenwickMonitor::isReachable() const
{
    return m_polling && m_state.live && m_live;
}

// The list is ahead of Quenwick from here on; the poll after the answer puts right what did not take.
void QuenwickMonitor::begin(const QuenwickItem &item)
{
    ReviewState next = m_state;
    next.busy.insert(item.id());
    remove(next.inbox, item);
    m_unanswered.remove(item.id());
    publish(next);
}

void QuenwickMonitor::decide(const QuenwickItem &item, ReviewAction action, const Answered &done)
{
    const QString status = action == ReviewAction::Approve ? u"approved"_s : u"dismissed"_s;
    post("/api/decide", with(keyOf(item), u"status"_s, status), done);
}

void QuenwickMonitor::finish(const QuenwickItem &item, const QString &message, bool answered)
{
    ReviewState next = m_state;
    next.busy.remove(item.id());
    next.lastMessage = message.left(longestMessage);
    if (!answered)
        m_unanswered.insert(item.id());
    publish(next);
    poll();
}

void QuenwickMonitor::post(const QByteArray &path, const QJsonObject &json, const Answered &done)
{
    if (!m_live) { // gone between two requests
        done(std::nullopt);
        return;
    }
    const QByteArray body = QJsonDocument(json).toJson(QJsonDocument::Compact);
    auto *request = new LoopbackRequest(m_live->port, path, body, m_polling->surroundings.limits, this);
    connect(
        request, &LoopbackRequest::finished, this, [request, done](const std::optional<HttpReply> &reply) {
            request->deleteLater();
            done(answerIn(reply));
        });
}

} // namespace nubble
