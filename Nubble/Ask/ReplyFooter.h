#pragma once

#include <QWidget>

#include <optional>

class QLabel;

namespace nubble {

class ThinkingDots;

// What stands below the last message: that a reply is awaited, or why there is none.
class ReplyFooter : public QWidget {
    Q_OBJECT

public:
    explicit ReplyFooter(QWidget *parent = nullptr);

    void show(bool awaits, const std::optional<QString> &problem);
    void setMotionReduced(bool reduced);

private:
    void openMenu(const QPoint &point); // about the problem

    ThinkingDots *m_dots;
    QLabel *m_problem;
};

} // namespace nubble
