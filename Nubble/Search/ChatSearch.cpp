#include "Search/ChatSearch.h"

#include <algorithm>

#include "Platform/MainThread.h"
#include "Search/ChatDecoding.h"
#include "Search/ChatTexts.h"
#include "Shell/ChildProcess.h"
#include "Shell/Tools.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto typingDelay = 120ms;
constexpr CommandLimits limits{.output = 64 * 1024 * 1024, .errors = 0, .time = 15s, .grace = 0ms};

QString trimmedOfSpaces(const QString &text)
{
    const auto isSpace = [](QChar each) {
        return each == u'\t' || each.category() == QChar::Separator_Space;
    };
    const auto begin = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto end = std::find_if_not(text.rbegin(), std::make_reverse_iterator(begin), isSpace).base();
    return text.mid(begin - text.begin(), end - begin);
}

QString correctionsText(const QMap<QString, QStringList> &corrected)
{
    QStringList entries;
    for (auto each = corrected.begin(); each != corrected.end(); ++each)
        entries.append(each.key() + u" → "_s + each.value().join(u" / "_s));
    return entries.join(u", "_s);
}

} // namespace

ChatSearch::ChatSearch(const Home &home, std::function<void(const QUrl &)> openUrl, QObject *parent)
    : QObject(parent), m_home(home), m_opening(home, std::move(openUrl)), m_decoder(u"chats"_s)
{
    assertMainThread("Nubble/Search/ChatSearch");
    m_pending.setSingleShot(true);
    m_pending.setTimerType(Qt::PreciseTimer); // others fire early, too
    m_pending.callOnTimeout(this, &ChatSearch::run);
    connect(&m_opening, &ChatOpening::opened, this, &ChatSearch::opened);
}

ChatSearch::~ChatSearch() = default;

void ChatSearch::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    Q_EMIT queryChanged();
    forgetProblem();
    schedule(false);
}

void ChatSearch::setCategory(const std::optional<QString> &category)
{
    if (m_category == category)
        return;
    m_category = category;
    Q_EMIT categoryChanged();
    forgetProblem();
    schedule(true);
}

// It was another search's, about whose results nothing is known either.
void ChatSearch::forgetProblem()
{
    if (!m_problem)
        return;
    m_problem.reset();
    m_answered = false;
    Q_EMIT answered();
}

void ChatSearch::schedule(bool immediately)
{
    m_pending.start(immediately ? 0ms : typingDelay);
}

// The category travels as the tool's own filter.
QString ChatSearch::queryText() const
{
    const QString text = trimmedOfSpaces(m_query);
    return m_category ? u"cat:\"%1\" "_s.arg(*m_category) + text : text;
}

void ChatSearch::run()
{
    const auto decoded = [this, generation = ++m_generation,
                          query = m_query](const std::optional<SearchResponse> &response) {
        if (generation == m_generation)
            accept(response, query);
    };
    setProcess(
        m_search,
        exec(
            {u"search"_s, u"--json"_s, u"-n"_s, u"25"_s, queryText()},
            [this, decoded](const std::optional<QByteArray> &json) {
                if (!json)
                    decoded({});
                else
                    m_decoder.add([json](const std::stop_token &) { return decodeSearch(*json); }, decoded);
            }));
    if (!m_search)
        decoded({});
}

void ChatSearch::accept(const std::optional<SearchResponse> &response, const QString &query)
{
    m_problem.reset();
    if (!response)
        m_problem = Tools::find(u"yarnbin"_s, m_home)
            ? u"Search failed — run `yarnbin sync` in a terminal"_s
            : u"yarnbin isn't installed — the `yarnbin` command wasn't found"_s;
    m_results = response ? response->results : QList<ChatHit>();
    if (response) {
        m_selection = 0;
        m_corrected = correctionsText(response->corrected);
        m_words = searchedWords(query, response->corrected);
    }
    m_answered = true;
    Q_EMIT answered();
    setProcess(m_search, nullptr);
}

// The one before is ended.
void ChatSearch::setProcess(Process &which, Process process)
{
    const bool was = isSearching();
    which = std::move(process);
    if (was != isSearching())
        Q_EMIT searchingChanged();
}

// None when there is no such command, and then no answer.
ChatSearch::Process ChatSearch::exec(const QStringList &arguments, const Answer &answer)
{
    const std::optional<QString> yarnbin = Tools::find(u"yarnbin"_s, m_home);
    if (!yarnbin)
        return nullptr;
    auto process = std::make_unique<ChildProcess>(
        Command{.program = *yarnbin, .arguments = arguments}, limits, ChildProcess::Delivery::Whole);
    connect(process.get(), &ChildProcess::ended, this, [answer](const CommandEnd &end) {
        const bool succeeded =
            end.kind == CommandEnd::Kind::Exited && end.code == 0 && end.cause == CommandEnd::Cause::Itself;
        const QByteArray output = end.output; // the answer may delete the process
        answer(succeeded ? std::optional(output) : std::nullopt);
    });
    process->start();
    return process;
}

void ChatSearch::loadCategories()
{
    const auto decoded = [this](const std::optional<QList<ChatCategory>> &categories) {
        if (!categories || *categories == m_categories)
            return;
        m_categories = *categories;
        Q_EMIT categoriesChanged();
    };
    m_categoryList =
        exec({u"categories"_s, u"--json"_s}, [this, decoded](const std::optional<QByteArray> &json) {
            if (json)
                m_decoder.add([json](const std::stop_token &) { return decodeCategories(*json); }, decoded);
        });
}

void ChatSearch::read(const ChatHit &hit)
{
    const auto decoded = [this, query = m_query, read = ++m_reads](const std::optional<ChatThread> &thread) {
        if (read != m_reads)
            return;
        if (thread && query == m_query) {
            m_hit = 0;
            m_thread = thread;
            Q_EMIT threadChanged();
        }
        setProcess(m_reading, nullptr);
    };
    setProcess(
        m_reading,
        exec(
            {u"thread"_s, hit.id, u"--query"_s, m_query},
            [this, decoded](const std::optional<QByteArray> &json) {
                if (!json)
                    decoded({});
                else
                    m_decoder.add([json](const std::stop_token &) { return decodeThread(*json); }, decoded);
            }));
}

void ChatSearch::openThread()
{
    if (m_selection < m_results.size())
        read(m_results.at(m_selection));
}

void ChatSearch::closeThread()
{
    ++m_reads; // what is still being read does not open
    setProcess(m_reading, nullptr);
    if (!m_thread)
        return;
    m_thread.reset();
    Q_EMIT threadChanged();
}

void ChatSearch::stepHit(qsizetype by)
{
    if (!m_thread || m_thread->hits.isEmpty())
        return;
    const qsizetype count = m_thread->hits.size();
    m_hit = ((m_hit + by) % count + count) % count;
    Q_EMIT hitChanged();
}

void ChatSearch::move(qsizetype by)
{
    if (m_results.isEmpty())
        return;
    m_selection = std::clamp<qsizetype>(m_selection + by, 0, m_results.size() - 1);
    Q_EMIT selectionChanged();
}

void ChatSearch::openTarget(const ChatTarget &target)
{
    if (!target.resume.isEmpty())
        m_opening.resume(target.resume);
    else if (!target.link.isEmpty())
        m_opening.openLink(target.link);
}

void ChatSearch::open(const ChatHit &hit)
{
    openTarget(targetOf(hit));
}

void ChatSearch::open(const ChatThread &thread)
{
    openTarget(targetOf(thread));
}

} // namespace nubble
