#pragma once

#include <QHash>
#include <QWidget>

#include <utility>

class QLabel;
class QVBoxLayout;

namespace nubble {

class CappedScroll;
class CardHeader;
class Clock;
class ProcessActivator;
struct ClaudeSession;
class ProjectRow;
class SessionMonitor;

// The sessions card: every live session as a row, newest activity first. Rows follow their sessions, so that
// hover, focus and scroll position outlast a poll.
class ProjectsCardContent : public QWidget {
    Q_OBJECT

public:
    // `maxHeight` is what the screen has room for.
    ProjectsCardContent(
        const SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock, int maxHeight,
        QWidget *parent = nullptr);

Q_SIGNALS:
    void closeRequested();

private:
    using RowKey = std::pair<QString, qint32>; // two terminals can hold the same session

    void updateRows();
    ProjectRow *rowOf(const RowKey &key);
    void removeRowsExcept(const QList<RowKey> &keys);
    void orderFocus();
    void showRow(const ClaudeSession &session, int position);

    const SessionMonitor &m_monitor;
    ProcessActivator &m_activator;
    bool m_bringsForward; // whether this desktop lets rows do so
    const Clock &m_clock;
    CardHeader *m_header;
    QLabel *m_empty;
    QWidget *m_list;
    CappedScroll *m_scroll;
    QVBoxLayout *m_rows;
    QHash<RowKey, ProjectRow *> m_rowOf;
    QList<RowKey> m_order; // from top to bottom
};

} // namespace nubble
