#pragma once

#include <QTimer>
#include <QWidget>

class QKeyEvent;
class QLineEdit;

namespace nubble {

class NotchButton;
class Spinner;

// Where the user writes what to search for: a symbol, which turns while a search takes long, the text, and a
// button that empties it. Keys that are of no use for one line of text go on to the parent.
class QueryField : public QWidget {
    Q_OBJECT

public:
    explicit QueryField(QWidget *parent = nullptr);

    [[nodiscard]] QString text() const;
    void setText(const QString &text);
    void selectAll(); // so that the next key begins a new query
    void type(const QKeyEvent &key);
    void setRunning(bool running);
    void setMotionReduced(bool reduced);

Q_SIGNALS:
    void edited(const QString &text); // by the user

protected:
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void showRunning(bool shows);
    void followText();

    QLineEdit *m_line;
    NotchButton *m_clear;
    QTimer m_soon; // a search that is over by then does not show
    Spinner *m_spinner;
};

} // namespace nubble
