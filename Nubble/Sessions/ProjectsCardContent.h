#pragma once

#include <QHash>
#include <QWidget>

#include "Sessions/ClaudeSession.h"

class QLabel;

namespace nubble {

class CappedScroll;
class CardHeader;
class Clock;
class NotchButton;
class ProcessActivator;
class ProjectRow;
class RowColumn;
class SessionMonitor;

// The sessions card: every live session as a row, newest activity first. Rows follow their sessions, so that
// hover, focus and scroll position outlast a poll. Only the rows in sight and some around them are there,
// besides those that Tab can lead to.
class ProjectsCardContent : public QWidget {
    Q_OBJECT

public:
    // `maxHeight` is what the screen has room for.
    ProjectsCardContent(
        const SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock, int maxHeight,
        QWidget *parent = nullptr);

Q_SIGNALS:
    void closeRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateRows();
    [[nodiscard]] int positionOf(const SessionRun &key) const; // the number of sessions if it is not there
    [[nodiscard]] QList<int> rowsAround() const;
    ProjectRow *rowOf(const SessionRun &key);
    void removeRowsExcept(const QList<SessionRun> &keys);
    void orderFocus();
    [[nodiscard]] bool goOn(int key);
    void bringForward(ProjectRow &row, pid_t pid);
    void showRow(const ClaudeSession &session, int position);

    const SessionMonitor &m_monitor;
    ProcessActivator &m_activator;
    bool m_bringsForward; // whether this desktop lets rows do so
    const Clock &m_clock;
    CardHeader *m_header;
    NotchButton *m_close;
    QLabel *m_empty;
    RowColumn *m_rows;
    CappedScroll *m_scroll;
    QHash<SessionRun, ProjectRow *> m_rowOf;
    QList<SessionRun> m_order; // of those that are there, from top to bottom
};

} // namespace nubble
