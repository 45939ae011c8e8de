#pragma once

#include <QAbstractButton>
#include <QWidget>

#include "Widgets/HoverLift.h"
#include "Widgets/PillButton.h"

class QLabel;

namespace nubble {

// The pieces of the review card that are not its rows.

// Opens Quenwick, and says how much waits there.
class LogoButton : public PillButton {
    Q_OBJECT

public:
    explicit LogoButton(QWidget *parent = nullptr);

    void setPending(int pending);
};

// Says that Quenwick is closed, and opens it.
class ClosedBanner : public QAbstractButton {
    Q_OBJECT

public:
    explicit ClosedBanner(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    HoverLift m_hover;
};

// In the place of the rows when nothing waits.
class EmptyInbox : public QWidget {
    Q_OBJECT

public:
    explicit EmptyInbox(QWidget *parent = nullptr);
};

// Stands above the items of a day.
class DayHeader : public QWidget {
    Q_OBJECT

public:
    DayHeader(const QString &label, bool soon, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_label;
    bool m_soon;
};

} // namespace nubble
