#pragma once

#include <QAbstractButton>
#include <QTimer>

#include "Sessions/RunState.h"
#include "Widgets/HoverLift.h"

namespace nubble {

class NotchButton;

// What a row says.
struct ProjectRowContent {
    QString title;
    QString lastPrompt; // empty when there is none
    RunState state = RunState::Idle;
    QString elapsed;
    QString symbol;
    QString folder;
    bool isTitleIdentifier = false;
    QString terminal{}; // told before the title, where that alone would not do

    [[nodiscard]] QString heading() const;
    bool operator==(const ProjectRowContent &) const = default;
};

// One session in the sessions card: a button that brings the session forward, where it is enabled. Long texts
// are elided; the tool tip has them whole.
class ProjectRow : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int rowHeight = 46; // units

    explicit ProjectRow(QWidget *parent = nullptr);

    void setContent(const ProjectRowContent &content);                     // an equal one repaints nothing
    [[nodiscard]] const QString &title() const { return m_content.title; } // of the session alone

    // Says in the place of the last prompt why the session did not come forward, for some seconds, and offers
    // to copy `command`, unless that is empty. An empty reason takes it back.
    void showReason(const QString &reason, const QString &command = {});

    [[nodiscard]] QWidgetList tabStops(); // in the order in which Tab goes

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void endReason();
    void copyCommand();
    [[nodiscard]] const QString &secondLine() const;
    void describe();
    void drawBackground(QPainter &painter, const QRectF &row) const;
    double drawState(QPainter &painter, QRectF line) const;
    void drawTexts(QPainter &painter, const QRectF &area) const;

    ProjectRowContent m_content;
    QString m_reason; // empty: none
    QString m_command;
    QTimer m_reasonTime{this};
    NotchButton *m_copy; // hidden without a command
    HoverLift m_hover;
};

} // namespace nubble
