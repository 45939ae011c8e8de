#include "Search/ChatSearchView.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QDateTime>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStackedLayout>
#include <QVBoxLayout>

#include <algorithm>

#include "Platform/Clock.h"
#include "Platform/DesktopPreferences.h"
#include "Platform/Outcome.h"
#include "Search/CategoryStrip.h"
#include "Search/ChatSearch.h"
#include "Search/ChatTexts.h"
#include "Search/QueryField.h"
#include "Search/ResultList.h"
#include "Search/ThreadPage.h"
#include "Thread/ThreadView.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/FloatingFrame.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/SymbolSign.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int side = 20;
constexpr int footHeight = 30;

void setTint(QLabel &label, const QColor &tint)
{
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, tint);
    label.setPalette(palette);
}

} // namespace

ChatSearchView::ChatSearchView(
    ChatSearch &search, const Clock &clock, const DesktopPreferences &preferences, QWidget *parent)
    : QWidget(parent), m_search(search), m_clock(clock), m_preferences(preferences),
      m_query(new QueryField(this)), m_categories(new CategoryStrip),
      m_corrected(CardMetrics::makeNote(this)),
      m_list(new ResultList([this] { return localTime(m_clock.now()); })),
      m_sign(new SymbolSign(u"magnifyingglass"_s, SymbolSign::large, Palette::textSecondary)),
      m_message(CardMetrics::makeNote(this)), m_found(new QStackedLayout), m_thread(new ThreadPage),
      m_pages(new QStackedLayout), m_foot(CardMetrics::makeNote(this))
{
    setFocusProxy(m_query);
    m_foot->setFont(Typography::caption());
    m_foot->setContentsMargins(side, 0, side, 0);
    m_foot->setFixedHeight(footHeight);
    m_pages->addWidget(makeResults());
    m_pages->addWidget(m_thread);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_query);
    layout->addSpacing(9);
    layout->addLayout(m_pages, 1);
    layout->addWidget(m_foot);

    followSearch();
    followUser();
    for (NotchButton *button : findChildren<NotchButton *>())
        button->installEventFilter(this);
    m_query->setText(m_search.query());
    showCategories();
    showAnswer();
    showThread();
}

QWidget *ChatSearchView::makeResults()
{
    m_corrected->setWordWrap(false);
    m_corrected->setContentsMargins(side, 2, side, 6);
    m_message->setFont(Typography::reading());
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setContentsMargins(3 * side, 0, 3 * side, 0);
    m_found->addWidget(m_list);
    auto *instead = new QWidget;
    auto *lines = new QVBoxLayout(instead);
    lines->setContentsMargins({});
    lines->setSpacing(12);
    lines->addStretch(3);
    lines->addWidget(m_sign, 0, Qt::AlignHCenter);
    lines->addWidget(m_message);
    lines->addStretch(4);
    m_found->addWidget(instead);
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_categories);
    layout->addWidget(m_corrected);
    auto *within = new QVBoxLayout;
    within->setContentsMargins(FloatingFrame::rim, 0, FloatingFrame::rim, 0);
    within->addLayout(m_found);
    layout->addLayout(within, 1);
    return page;
}

void ChatSearchView::followSearch()
{
    connect(&m_search, &ChatSearch::answered, this, &ChatSearchView::showAnswer);
    connect(&m_search, &ChatSearch::categoriesChanged, this, &ChatSearchView::showCategories);
    connect(&m_search, &ChatSearch::categoryChanged, this, [this] {
        m_categories->setChosen(m_search.category());
    });
    connect(&m_search, &ChatSearch::queryChanged, this, [this] {
        m_query->setText(m_search.query());
        showFoot(); // a notice was about what another one has found
    });
    connect(&m_search, &ChatSearch::selectionChanged, this, [this] {
        m_list->select(m_search.selection());
        showFoot(); // a notice was about another
    });
    connect(&m_search, &ChatSearch::searchingChanged, this, [this] {
        m_query->setRunning(m_search.isSearching());
    });
    connect(&m_search, &ChatSearch::threadChanged, this, &ChatSearchView::showThread);
    connect(&m_search, &ChatSearch::hitChanged, this, [this] {
        m_thread->showHit(m_search.hit());
        showFoot();
    });
    connect(&m_search, &ChatSearch::opened, this, &ChatSearchView::showNotice);
    const auto followMotion = [this] { m_query->setMotionReduced(m_preferences.reducedMotion()); };
    connect(&m_preferences, &DesktopPreferences::reducedMotionChanged, this, followMotion);
    followMotion();
}

void ChatSearchView::followUser()
{
    connect(m_query, &QueryField::edited, this, [this](const QString &query) {
        m_search.closeThread(); // its matches are those of another query
        m_search.setQuery(query);
    });
    connect(m_categories, &CategoryStrip::chosen, &m_search, &ChatSearch::setCategory);
    connect(m_list, &ResultList::chosen, this, [this](int row) {
        moveTo(row);
        openSelected();
    });
    connect(m_list, &ResultList::openWanted, this, [this](int row) {
        moveTo(row);
        openOutside();
    });
    connect(m_thread, &ThreadPage::ready, this, [this] {
        m_pages->setCurrentWidget(m_thread);
        layout()->activate();
        showFoot();
    });
    connect(m_thread, &ThreadPage::backWanted, &m_search, &ChatSearch::closeThread);
    connect(m_thread, &ThreadPage::stepWanted, &m_search, &ChatSearch::stepHit);
    connect(m_thread, &ThreadPage::openWanted, this, &ChatSearchView::openOutside);
    connect(m_thread, &ThreadPage::linkActivated, this, &ChatSearchView::linkActivated);
}

void ChatSearchView::focusQuery()
{
    m_query->setFocus();
    m_query->selectAll();
}

void ChatSearchView::showAnswer()
{
    m_list->setHits(m_search.results(), TextMatcher(m_search.words()));
    m_list->select(m_search.selection());
    m_corrected->setText(singleLine(m_search.corrected()));
    m_corrected->setVisible(!m_search.corrected().isEmpty() && !m_search.results().isEmpty());
    const std::optional<QString> &problem = m_search.problem();
    const bool isNews = problem && m_message->text() != *problem;
    m_message->setText(!m_search.hasAnswered() ? QString() : problem.value_or(u"No chats match."_s));
    m_sign->setVisible(m_search.hasAnswered());
    setTint(*m_message, problem ? Palette::problem : Palette::textSecondary);
    m_found->setCurrentIndex(m_search.results().isEmpty() ? 1 : 0);
    showFoot();
    if (isNews) {
        QAccessibleEvent alert(m_message, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ChatSearchView::showCategories()
{
    m_categories->setCategories(m_search.categories(), m_search.category());
}

// The list stays until the thread can be shown.
void ChatSearchView::showThread()
{
    if (const auto &thread = m_search.thread()) {
        m_thread->setThread(
            *thread, TextMatcher(m_search.words()), dateText(thread->updated, localTime(m_clock.now())));
        return;
    }
    m_thread->clear();
    m_pages->setCurrentIndex(0);
    showFoot();
}

void ChatSearchView::showNotice(const Outcome &outcome)
{
    if (outcome.isDone())
        Q_EMIT closeWanted();
    else
        showFoot(outcome.why());
}

void ChatSearchView::showFoot(const QString &notice)
{
    const bool isRead = m_pages->currentWidget() == m_thread;
    m_foot->setText(
        !notice.isEmpty() ? notice
            : isRead      ? QString()
                          : u"in:code · in:chat · cat: · tag: · is:starred · after:"_s);
    setTint(*m_foot, notice.isEmpty() ? Palette::textSecondary : Palette::problem);
    m_foot->setVisible(!isRead || !notice.isEmpty());
    if (!notice.isEmpty()) {
        QAccessibleEvent alert(m_foot, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ChatSearchView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(QRect(0, m_query->geometry().bottom() + 1, width(), 1), Palette::cardLine);
    if (m_foot->isVisible())
        painter.fillRect(QRect(0, m_foot->y(), width(), 1), Palette::cardLine);
}

// A button itself would take them to move the keyboard on.
bool ChatSearchView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto &key = static_cast<const QKeyEvent &>(*event);
        if (key.key() == Qt::Key_Up || key.key() == Qt::Key_Down)
            return takeKey(key);
    }
    return QWidget::eventFilter(watched, event);
}

void ChatSearchView::keyPressEvent(QKeyEvent *event)
{
    if (takeKey(*event))
        return;
    const bool writes = !event->text().isEmpty() && event->text().at(0).isPrint()
        && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (!writes || m_query->hasFocus())
        return QWidget::keyPressEvent(event);
    m_query->setFocus();
    m_query->type(*event);
}

bool ChatSearchView::takeKey(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (event.matches(QKeySequence::Copy))
        return m_search.thread() && m_thread->messages().copy();
    if (modifiers == Qt::ControlModifier && event.key() == Qt::Key_L)
        return focusQuery(), true;
    if (modifiers == Qt::ControlModifier && isReturn)
        return openOutside(), true;
    if (modifiers != Qt::NoModifier)
        return false;
    if (auto *button = qobject_cast<QAbstractButton *>(window()->focusWidget()); isReturn && button)
        return event.isAutoRepeat() || (button->click(), true);
    if (isReturn)
        return openSelected(), true;
    switch (event.key()) {
    case Qt::Key_Up:
        return down(-1), true;
    case Qt::Key_Down:
        return down(1), true;
    case Qt::Key_PageUp:
        return page(-1), true;
    case Qt::Key_PageDown:
        return page(1), true;
    case Qt::Key_Escape:
        return escape(), true;
    default:
        return false;
    }
}

void ChatSearchView::page(int pages)
{
    if (m_search.thread())
        m_thread->messages().scrollPages(pages);
    else
        m_search.move(pages * m_list->rowsPerPage());
}

void ChatSearchView::down(int by)
{
    if (m_search.thread())
        m_search.stepHit(by);
    else
        m_search.move(by);
}

void ChatSearchView::escape()
{
    if (m_search.thread() || m_search.isReading())
        m_search.closeThread();
    else
        Q_EMIT closeWanted();
}

void ChatSearchView::openSelected()
{
    m_search.openThread();
}

void ChatSearchView::openOutside()
{
    if (m_search.thread())
        m_search.open(*m_search.thread());
    else if (m_search.selection() < m_search.results().size())
        m_search.open(m_search.results().at(m_search.selection()));
}

void ChatSearchView::moveTo(qsizetype row)
{
    m_search.move(row - m_search.selection());
}

} // namespace nubble
