#pragma once

#include <QWidget>

#include "Review/ReviewTexts.h"
#include "Widgets/HoverLift.h"

namespace nubble {

class NotchButton;
class Spinner;

// One review: who wrote what, when it is due, and a button for each thing that can be done about it. While
// that is under way it is dim and takes no input.
class QuenwickRow : public QWidget {
    Q_OBJECT

public:
    QuenwickRow(const QuenwickItem &item, bool soon, QWidget *parent = nullptr);

    void setDue(const QString &due); // in words
    void setLive(bool live);
    void setBusy(bool busy, bool motionReduced);
    [[nodiscard]] const QuenwickItem &item() const { return m_item; }

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void actionWanted(nubble::ReviewAction action);
    void moveWanted(int by); // the keyboard, to another row

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    struct Line;

    [[nodiscard]] NotchButton *addAction(ReviewAction action);
    [[nodiscard]] QList<Line> lines() const;
    void describe();

    const QuenwickItem m_item;
    const bool m_soon;
    QStringList m_quote; // line by line
    QString m_due;
    bool m_busy = false;
    QWidget *m_actions;
    Spinner *m_spinner;
    QMap<ReviewAction, NotchButton *> m_buttons;
    HoverLift m_hover;
};

} // namespace nubble
