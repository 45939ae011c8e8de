#pragma once

#include <QListView>

#include "Search/ChatRecords.h"
#include "Search/ChatRow.h"

namespace nubble {

// The chats that were found. A click chooses one, or opens it by its button; the keys are the parent's.
class ResultList : public QListView {
    Q_OBJECT

public:
    explicit ResultList(const ChatRow::Now &now, QWidget *parent = nullptr);
    ~ResultList() override;

    void setHits(const QList<ChatHit> &hits, const TextMatcher &matcher); // from the first one on
    void select(qsizetype row);
    [[nodiscard]] int rowsPerPage() const;

Q_SIGNALS:
    void chosen(int row);
    void openWanted(int row);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    class Rows;

    void setPointer(const QPoint &pointer);
    void showToolTip(const QPoint &point);

    Rows *m_rows;
    ChatRow *m_row;
};

} // namespace nubble
