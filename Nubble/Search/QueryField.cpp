#include "Search/QueryField.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

#include <chrono>

#include "Widgets/CardMetrics.h"
#include "Widgets/ContextMenu.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Spinner.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr int fieldHeight = 54;
constexpr int side = 20;
constexpr int symbolSide = 18;
constexpr int clearSide = 22;
constexpr int clearArea = CardMetrics::headerHeight; // that may be touched
constexpr int fromRim = 12;                          // of the button
constexpr auto patience = 200ms;

class Line : public QLineEdit {
public:
    using QLineEdit::QLineEdit;

protected:
    void contextMenuEvent(QContextMenuEvent *event) override
    {
        openContextMenu(*this, event->globalPos(), createStandardContextMenu());
    }
    // Without a selection there is nothing that it could copy.
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->matches(QKeySequence::Copy) && !hasSelectedText())
            event->ignore();
        else
            QLineEdit::keyPressEvent(event);
    }
};

} // namespace

QueryField::QueryField(QWidget *parent)
    : QWidget(parent), m_line(new Line(this)),
      m_clear(new NotchButton(u"xmark"_s, u"Clear the search"_s, this)),
      m_spinner(new Spinner(symbolSide, this))
{
    setFixedHeight(fieldHeight);
    setFocusProxy(m_line);
    m_line->setFrame(false);
    m_line->setFont(Typography::query());
    m_line->setPlaceholderText(u"Search chats"_s);
    m_line->setAccessibleName(u"Search chats"_s);
    QPalette colours = m_line->palette();
    colours.setColor(QPalette::Base, Qt::transparent);
    colours.setColor(QPalette::Text, Palette::textPrimary);
    colours.setColor(QPalette::PlaceholderText, Palette::textSecondary);
    colours.setColor(QPalette::Highlight, Palette::selection);
    m_line->setPalette(colours);
    m_clear->setSide(clearSide);
    m_clear->setFixedSize(clearArea, clearArea);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(side + symbolSide + 9, 0, fromRim - (clearArea - clearSide) / 2, 0);
    layout->addWidget(m_line);
    layout->addWidget(m_clear);

    m_soon.setSingleShot(true);
    m_soon.setInterval(patience);
    m_soon.callOnTimeout(this, [this] { showRunning(true); });
    m_spinner->move(side, (fieldHeight - symbolSide) / 2);
    m_spinner->hide();
    connect(m_line, &QLineEdit::textEdited, this, &QueryField::edited);
    connect(m_line, &QLineEdit::textChanged, this, &QueryField::followText);
    connect(m_clear, &QAbstractButton::clicked, this, [this] {
        m_line->clear();
        m_line->setFocus();
        Q_EMIT edited({});
    });
    followText();
}

QString QueryField::text() const
{
    return m_line->text();
}

void QueryField::setText(const QString &text)
{
    if (m_line->text() != text)
        m_line->setText(text);
}

void QueryField::selectAll()
{
    m_line->selectAll();
}

void QueryField::type(const QKeyEvent &key)
{
    m_line->insert(key.text());
    Q_EMIT edited(m_line->text());
}

void QueryField::followText()
{
    m_clear->setVisible(!m_line->text().isEmpty());
}

void QueryField::setRunning(bool running)
{
    if (!running) {
        m_soon.stop();
        showRunning(false);
    } else if (m_spinner->isHidden() && !m_soon.isActive()) {
        m_soon.start();
    }
}

void QueryField::setMotionReduced(bool reduced)
{
    m_spinner->setMotionReduced(reduced);
}

void QueryField::showRunning(bool shows)
{
    m_spinner->setVisible(shows);
    setAccessibleDescription(shows ? u"Searching"_s : QString());
    update();
}

void QueryField::hideEvent(QHideEvent *)
{
    m_soon.stop();
    showRunning(false);
}

void QueryField::paintEvent(QPaintEvent *)
{
    if (!m_spinner->isHidden())
        return;
    QPainter painter(this);
    const QRectF symbol(side, (height() - symbolSide) / 2.0, symbolSide, symbolSide);
    Symbols::draw(painter, u"magnifyingglass"_s, symbol, Palette::textSecondary);
}

} // namespace nubble
