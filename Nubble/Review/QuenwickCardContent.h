#pragma once

#include <QWidget>

#include "Review/ReviewTexts.h"

class QLabel;
class QVBoxLayout;

namespace nubble {

class CappedScroll;
class CardHeader;
class CardHeader;
class Clock;
class ClosedBanner;
class DesktopPreferences;
class EmptyInbox;
class LogoButton;
class QuenwickMonitor;
class QuenwickRow;
class RefreshButton;

// The review card: what waits in Quenwick, day by day, and what can be done about each.
class QuenwickCardContent : public QWidget {
    Q_OBJECT

public:
    // All three outlive it.
    QuenwickCardContent(
        QuenwickMonitor &quenwick, const Clock &clock, const DesktopPreferences &preferences, int maxHeight,
        QWidget *parent = nullptr);

private:
    void follow();
    void showGroups(const QList<DayGroup> &groups);
    void add(const DayGroup &group);
    void updateRows();
    void focusRow(qsizetype index);
    [[nodiscard]] qsizetype focusedRow() const; // -1: none

    QuenwickMonitor &m_quenwick;
    const Clock &m_clock;
    const DesktopPreferences &m_preferences;
    CardHeader *m_header;
    LogoButton *m_logo;
    RefreshButton *m_refresh;
    QLabel *m_count;
    ClosedBanner *m_banner;
    EmptyInbox *m_empty;
    QWidget *m_list;
    QVBoxLayout *m_days;
    CappedScroll *m_scroll;
    QLabel *m_footer;
    QList<QuenwickRow *> m_rows;
    QList<DayGroup> m_shown;
};

} // namespace nubble
