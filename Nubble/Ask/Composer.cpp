#include "Ask/Composer.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "Widgets/ContextMenu.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/SlimScrollBar.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int mostLines = 6;
constexpr double radius = 13;
constexpr double buttonSide = 26;
constexpr QMargins fieldMargins{6, 2, 2, 2}; // beside the text's own
constexpr int longestWord = 4096;

// Breaking lines between words takes time by the square of the longest one: minutes for a megabyte.
QTextOption::WrapMode wrapModeFor(const QString &text)
{
    int length = 0;
    for (const QChar each : text) {
        length = each.isSpace() ? 0 : length + 1;
        if (length > longestWord)
            return QTextOption::WrapAnywhere;
    }
    return QTextOption::WrapAtWordBoundaryOrAnywhere;
}

class Field : public QPlainTextEdit {
public:
    using QPlainTextEdit::QPlainTextEdit;

protected:
    void contextMenuEvent(QContextMenuEvent *event) override
    {
        openContextMenu(*this, event->globalPos(), createStandardContextMenu());
    }
    void insertFromMimeData(const QMimeData *source) override
    {
        if (wrapModeFor(source->text()) == QTextOption::WrapAnywhere)
            setWordWrapMode(QTextOption::WrapAnywhere); // until another text is set: it can be undone
        QPlainTextEdit::insertFromMimeData(source);
    }
};

} // namespace

Composer::Composer(QWidget *above, QWidget *parent)
    : QWidget(parent), m_field(new Field(this)), m_button(new NotchButton(u"arrow.up"_s, u"Send"_s, this))
{
    m_field->setFont(Typography::reading());
    m_field->setPlaceholderText(u"Ask about your screen…"_s);
    m_field->setAccessibleName(u"Question"_s);
    m_field->setFrameShape(QFrame::NoFrame);
    m_field->setTabChangesFocus(true);
    m_field->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_field->setVerticalScrollBar(new SlimScrollBar);
    m_button->setSide(buttonSide);
    m_field->viewport()->setAutoFillBackground(false);
    QPalette colours = m_field->palette();
    colours.setColor(QPalette::Base, Qt::transparent);
    colours.setColor(QPalette::Text, Palette::textPrimary);
    colours.setColor(QPalette::PlaceholderText, Palette::textSecondary);
    colours.setColor(QPalette::Highlight, Palette::selection);
    m_field->setPalette(colours);
    m_field->installEventFilter(this);
    setFocusProxy(m_field);

    auto *line = new QHBoxLayout;
    line->setContentsMargins(fieldMargins);
    line->setSpacing(4);
    line->addWidget(m_field);
    line->addWidget(m_button, 0, Qt::AlignBottom);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(4);
    layout->addWidget(above);
    layout->addLayout(line);

    connect(m_field->document(), &QTextDocument::contentsChanged, this, &Composer::followText);
    connect(
        m_field->document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
        &Composer::fit);
    connect(m_button, &QAbstractButton::clicked, this, [this] { m_busy ? Q_EMIT stopped() : Q_EMIT sent(); });
    followText();
    fit();
}

QString Composer::text() const
{
    return m_field->toPlainText();
}

void Composer::setText(const QString &text)
{
    m_field->clear();
    m_field->setWordWrapMode(wrapModeFor(text));
    m_field->setPlainText(text);
    m_field->moveCursor(QTextCursor::End);
}

void Composer::setBusy(bool busy)
{
    m_busy = busy;
    m_button->setSymbol(busy ? u"stop.fill"_s : u"arrow.up"_s);
    m_button->setHelpText(busy ? u"Stop"_s : u"Send"_s);
    followText();
}

void Composer::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Palette::control);
    painter.setPen(QPen(m_field->hasFocus() ? Palette::ringTrack : Palette::cardLine, 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

bool Composer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    if (event->type() == QEvent::KeyPress) {
        const auto *press = static_cast<QKeyEvent *>(event);
        if (takesKey(press->key(), press->modifiers() & ~Qt::KeypadModifier))
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool Composer::takesKey(int key, Qt::KeyboardModifiers modifiers)
{
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && !(modifiers & Qt::ShiftModifier)) {
        if (!m_busy)
            Q_EMIT sent();
        return true;
    }
    if (modifiers != Qt::NoModifier)
        return false;
    switch (key) {
    case Qt::Key_Up:
        if (!m_field->document()->isEmpty())
            return false;
        Q_EMIT recalled();
        return true;
    case Qt::Key_PageUp:
        Q_EMIT scrolled(-1);
        return true;
    case Qt::Key_PageDown:
        Q_EMIT scrolled(1);
        return true;
    default:
        return false;
    }
}

// As many lines as are written, which a plain text's layout counts.
void Composer::fit()
{
    const double written = m_field->document()->size().height();
    const double lines = std::clamp(written, 1.0, 1.0 * mostLines);
    m_field->setVerticalScrollBarPolicy(written > mostLines ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    const QFontMetricsF metrics(m_field->font());
    const double around = 2 * m_field->document()->documentMargin();
    m_field->setFixedHeight(static_cast<int>(std::ceil(lines * metrics.lineSpacing() + around)));
}

void Composer::followText()
{
    const bool does = m_busy || !m_field->document()->isEmpty();
    if (!does && m_button->hasFocus())
        m_field->setFocus(); // else the next button has it, and the next key
    m_button->setEnabled(does);
}

} // namespace nubble
