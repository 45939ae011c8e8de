#pragma once

#include <QWidget>

class QPlainTextEdit;

namespace nubble {

class NotchButton;

// Where the user writes: a field that grows to six lines, and a button that sends what stands there, or stops
// the reply under way. Return sends, Shift+Return breaks the line.
class Composer : public QWidget {
    Q_OBJECT

public:
    // `above` stands within the frame, over the field.
    explicit Composer(QWidget *above, QWidget *parent = nullptr);

    [[nodiscard]] QString text() const;
    void setText(const QString &text);
    void setBusy(bool busy);

Q_SIGNALS:
    void sent();
    void stopped();
    void recalled();          // Up in an empty field
    void scrolled(int pages); // through what stands above

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool takesKey(int key, Qt::KeyboardModifiers modifiers);
    void fit();
    void followText();

    QPlainTextEdit *m_field;
    NotchButton *m_button;
    bool m_busy = false;
};

} // namespace nubble
