#include "Search/QueryField.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

#include <chrono>

#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
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
constexpr auto patience = 200ms;
constexpr auto turn = 900ms;

class Line : public QLineEdit {
public:
    using QLineEdit::QLineEdit;

protected:
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
      m_clear(new NotchButton(u"xmark"_s, u"Clear the search"_s, this))
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

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(side + symbolSide + 9, 0, side - 4, 0);
    layout->addWidget(m_line);
    layout->addWidget(m_clear);

    m_soon.setSingleShot(true);
    m_soon.setInterval(patience);
    m_soon.callOnTimeout(this, [this] { showRunning(true); });
    m_turn.setStartValue(0.0);
    m_turn.setEndValue(360.0);
    m_turn.setDuration(turn / 1ms);
    m_turn.setLoopCount(-1);
    connect(&m_turn, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
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
    } else if (!m_showsRunning && !m_soon.isActive()) {
        m_soon.start();
    }
}

void QueryField::setMotionReduced(bool reduced)
{
    m_motionReduced = reduced;
    showRunning(m_showsRunning);
}

void QueryField::showRunning(bool shows)
{
    m_showsRunning = shows;
    setAccessibleDescription(shows ? u"Searching"_s : QString());
    const bool turns = shows && !m_motionReduced && isVisible();
    if (!turns)
        m_turn.stop();
    else if (m_turn.state() == QAbstractAnimation::Stopped)
        m_turn.start();
    update();
}

void QueryField::hideEvent(QHideEvent *)
{
    m_soon.stop();
    showRunning(false);
}

void QueryField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF symbol(side, (height() - symbolSide) / 2.0, symbolSide, symbolSide);
    if (!m_showsRunning)
        return Symbols::draw(painter, u"magnifyingglass"_s, symbol, Palette::textSecondary);
    constexpr double width = 2.2;
    constexpr int sixteenths = 16; // of a degree, in which the painter counts
    const QRectF ring = symbol.adjusted(width, width, -width, -width);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Palette::ringTrack, width));
    painter.drawEllipse(ring);
    painter.setPen(QPen(Palette::textPrimary, width, Qt::SolidLine, Qt::RoundCap));
    const int from =
        90 - qRound(m_turn.state() == QAbstractAnimation::Running ? m_turn.currentValue().toDouble() : 0);
    painter.drawArc(ring, from * sixteenths, -90 * sixteenths);
}

} // namespace nubble
