#pragma once

#include <QWidget>

class QHBoxLayout;

namespace nubble {

class NotchButton;

// The first line of a card: its title, a short text behind it, and small buttons at the end.
class CardHeader : public QWidget {
    Q_OBJECT

public:
    explicit CardHeader(const QString &title, QWidget *parent = nullptr);

    void setDetail(const QString &detail);
    void addAccessory(QWidget *accessory);
    void addAccessory(NotchButton *button); // may be touched in all of the header's height

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void describe();

    QString m_title;
    QString m_detail;
    QHBoxLayout *m_accessories;
};

} // namespace nubble
