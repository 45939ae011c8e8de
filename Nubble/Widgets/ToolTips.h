#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>

#include <functional>

class QWidget;

namespace nubble {

class ToolTip;

// Shows the tool tips of the controls in one window, in the place of the toolkit's: beside the control and
// never over it, within the screen, until the pointer leaves, anything is pressed, or the control goes. Made
// for a window, and owned by it. Main thread only.
class ToolTips : public QObject {
    Q_OBJECT

public:
    // Opens the tip at a place in window coordinates.
    using Opener = std::function<void(QWidget &tip, const QRect &frame)>;

    explicit ToolTips(QWidget &window, Opener opener = {});

    void setTranslucent(bool translucent); // whether translucent pixels show what is below; at first not
    void keepFrom(Qt::Edge edge);          // of the screen, where there is room; at first the upper

    // By the window's own. For controls that have several tips, and get the toolkit's event themselves.
    // `part` is what the text is about, in the control's coordinates. Nothing of nothing.
    static void show(QWidget &control, const QString &text, const QRect &part);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void open(QWidget &control, const QString &text, const QRect &part);
    void close();
    [[nodiscard]] bool ends(const QObject *watched, const QEvent &event) const;

    QWidget &m_window;
    Opener m_opener;
    bool m_translucent = false;
    Qt::Edge m_edge = Qt::TopEdge;
    QPointer<ToolTip> m_tip;            // none while none is shown
    const QWidget *m_control = nullptr; // compared only
    QRect m_part;
};

} // namespace nubble
