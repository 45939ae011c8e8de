#pragma once

#include <QLabel>
#include <QList>

namespace nubble {

struct CardFrame;

// A text about a control, as plain as it comes, in a small card. Its lines are wrapped anywhere if need be,
// and none turns the direction of another; what does not fit is cut off. Nobody can point at it. Assistive
// technology reads the whole text.
class ToolTip : public QLabel {
    Q_OBJECT

public:
    static constexpr int widest = 320; // device-independent pixels, with the shadow around it
    static constexpr qsizetype mostLines = 6;

    struct Line {
        QString text;
        bool isRightToLeft = false;
        bool isFirst = false; // of what the text's own lines have become

        bool operator==(const Line &) const = default;
    };

    // As large as the text asks for. Without translucency the window is cut to the card.
    ToolTip(const QString &text, bool translucent, QWidget *window);

    [[nodiscard]] const QList<Line> &lines() const { return m_lines; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] CardFrame frame() const;

    bool m_translucent;
    QList<Line> m_lines;
};

} // namespace nubble
