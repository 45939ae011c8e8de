#pragma once

#include <QButtonGroup>
#include <QScrollArea>

#include <optional>

#include "Search/ChatRecords.h"

class QGraphicsOpacityEffect;
class QHBoxLayout;

namespace nubble {

// The categories that there are, each with the number of its chats: one of them, or all, is chosen. Moves
// sideways where they are too many.
class CategoryStrip : public QScrollArea {
    Q_OBJECT

public:
    explicit CategoryStrip(QWidget *parent = nullptr);

    void setCategories(const QList<ChatCategory> &categories, const std::optional<QString> &chosen);
    void setChosen(const std::optional<QString> &chosen);

Q_SIGNALS:
    void chosen(const std::optional<QString> &category); // by the user

protected:
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void add(const std::optional<QString> &category, qint64 count);
    void placeFade();

    QWidget *m_row;
    QHBoxLayout *m_layout;
    QButtonGroup m_chips;
    QList<std::optional<QString>> m_categories; // of the chips
    QGraphicsOpacityEffect *m_fade;
};

} // namespace nubble
