#pragma once

#include <QAbstractButton>

#include "Sessions/RunState.h"
#include "Widgets/HoverLift.h"

namespace nubble {

// What a row says.
struct ProjectRowContent {
    QString title;
    QString lastPrompt; // empty when there is none
    RunState state = RunState::Idle;
    QString elapsed;
    QString symbol;
    QString folder;
    bool isTitleIdentifier = false;

    bool operator==(const ProjectRowContent &) const = default;
};

// One session in the sessions card: a button that brings the session forward, where it is enabled. Long texts
// are elided; the tool tip has them whole.
class ProjectRow : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int rowHeight = 46;

    explicit ProjectRow(QWidget *parent = nullptr);

    void setContent(const ProjectRowContent &content); // an equal one repaints nothing
    [[nodiscard]] const QString &title() const { return m_content.title; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void describe();
    void drawBackground(QPainter &painter) const;
    double drawState(QPainter &painter, const QRectF &area) const;
    void drawTexts(QPainter &painter, const QRectF &area) const;

    ProjectRowContent m_content;
    HoverLift m_hover;
};

} // namespace nubble
