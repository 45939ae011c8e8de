#pragma once

#include <QImage>
#include <QPointer>
#include <QWidget>

#include <optional>

#include "Ask/ScreenContext.h"

namespace nubble {

class NotchButton;

// Says what of the screen goes with the next question, with a button that takes it out. The whole picture
// shows while the pointer rests on it. Hidden when nothing goes.
class ScreenChip : public QWidget {
    Q_OBJECT

public:
    explicit ScreenChip(QWidget *parent = nullptr);

    void show(const std::optional<ScreenContext> &screen, bool capturing);

Q_SIGNALS:
    void removed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    [[nodiscard]] QRect pictureRect() const; // empty when there is none

    QString m_text;
    QByteArray m_jpeg;
    QImage m_picture; // the same, small
    NotchButton *m_remove;
    QPointer<QWidget> m_preview;
};

} // namespace nubble
