#pragma once

#include <QWidget>

class QAbstractScrollArea;

namespace nubble {

// Lets what scrolls in a card fade into it at one end, where more of it is hidden. Lies above the area's
// viewport, and is seen there only; the mouse goes to what is below.
class ScrollFade : public QWidget {
    Q_OBJECT

public:
    static void addTo(QAbstractScrollArea *area); // at both ends; they follow it by themselves

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    enum class End { Top, Bottom };

    ScrollFade(QAbstractScrollArea *area, End end);

    void follow(); // the area's size, and how far it is scrolled

    QAbstractScrollArea *m_area;
    End m_end;
};

} // namespace nubble
