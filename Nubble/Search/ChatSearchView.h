#pragma once

#include <QUrl>
#include <QWidget>

class QLabel;
class QStackedLayout;

namespace nubble {

class CategoryStrip;
class ChatSearch;
class Clock;
class DesktopPreferences;
class Outcome;
class QueryField;
class ResultList;
class SymbolSign;
class ThreadPage;

// The search in past chats: where the user writes, and below either what was found or the chat that is read.
// Draws its model and calls what it can do.
class ChatSearchView : public QWidget {
    Q_OBJECT

public:
    // All three outlive it.
    ChatSearchView(
        ChatSearch &search, const Clock &clock, const DesktopPreferences &preferences,
        QWidget *parent = nullptr);

    void focusQuery();

Q_SIGNALS:
    void closeWanted();
    void linkActivated(const QUrl &url); // in a message

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override; // of its buttons

private:
    [[nodiscard]] QWidget *makeResults();
    void followSearch();
    void followUser();
    void showAnswer();
    void showCategories();
    void showThread();
    void showNotice(const Outcome &outcome);
    void showFoot(const QString &notice = {});
    [[nodiscard]] bool takeKey(const QKeyEvent &event);
    void page(int pages);
    void down(int by);
    void escape();
    void openSelected(); // to read it
    void openOutside();  // what is selected or read, where it belongs
    void moveTo(qsizetype row);

    ChatSearch &m_search;
    const Clock &m_clock;
    const DesktopPreferences &m_preferences;
    QueryField *m_query;
    CategoryStrip *m_categories;
    QLabel *m_corrected;
    ResultList *m_list;
    SymbolSign *m_sign; // in the place of results, and what it is about
    QLabel *m_message;
    QStackedLayout *m_found;
    ThreadPage *m_thread;
    QStackedLayout *m_pages;
    QLabel *m_foot;
};

} // namespace nubble
