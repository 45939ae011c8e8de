#include "Search/ThreadHeader.h"

#include <QHBoxLayout>
#include <QPainter>

#include "Search/ChatTexts.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int headerHeight = 46;
constexpr int side = 12;
constexpr int buttonSide = 26;
constexpr int gap = 10;

QRect textArea(const QRect &header, const QWidget *before, const QWidget *behind)
{
    return {
        before->geometry().right() + gap + 1, header.top(),
        behind->geometry().left() - before->geometry().right() - 2 * gap, header.height()};
}

} // namespace

ThreadHeader::ThreadHeader(QWidget *parent)
    : QWidget(parent), m_back(new NotchButton(u"chevron.left"_s, u"Back to the results  Esc"_s)),
      m_previous(new NotchButton(u"chevron.up"_s, u"Previous match  Up"_s)),
      m_next(new NotchButton(u"chevron.down"_s, u"Next match  Down"_s)),
      m_open(new NotchButton(u"arrow.up.right"_s, {}))
{
    setFixedHeight(headerHeight);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(side, 0, side, 0);
    layout->setSpacing(6);
    for (NotchButton *button : {m_back, m_previous, m_next, m_open}) {
        button->setSide(buttonSide);
        layout->addWidget(button);
        if (button == m_back)
            layout->addStretch();
    }
    connect(m_back, &QAbstractButton::clicked, this, &ThreadHeader::backWanted);
    connect(m_previous, &QAbstractButton::clicked, this, [this] { Q_EMIT stepWanted(-1); });
    connect(m_next, &QAbstractButton::clicked, this, [this] { Q_EMIT stepWanted(1); });
    connect(m_open, &QAbstractButton::clicked, this, &ThreadHeader::openWanted);
}

void ThreadHeader::setThread(const ChatThread &thread, const QString &date)
{
    m_title = titleText(thread.title);
    m_date = date;
    const QString help = openText(targetOf(thread));
    m_open->setHelpText(help + u"  Ctrl+Return"_s);
    m_open->setSymbol(openSymbol(targetOf(thread)));
    m_open->setVisible(!help.isEmpty());
    setMatch({});
}

void ThreadHeader::setMatch(const QString &match)
{
    m_match = match;
    m_previous->setVisible(!match.isEmpty());
    m_next->setVisible(!match.isEmpty());
    setAccessibleName(match.isEmpty() ? m_title : u"%1, match %2"_s.arg(m_title, match));
    layout()->activate(); // the texts stand between the buttons
    update();
}

void ThreadHeader::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QWidget *behind = m_match.isEmpty() ? m_open->isHidden() ? nullptr : m_open : m_previous;
    QRectF area = behind ? textArea(rect(), m_back, behind)
                         : rect().adjusted(m_back->geometry().right() + gap + 1, 0, -side, 0);
    painter.setFont(Typography::cardBody());
    painter.setPen(Palette::textSecondary);
    Typography::drawTabular(painter, area, Qt::AlignRight | Qt::AlignVCenter, m_match);
    area.setRight(area.right() - Typography::tabularWidth(painter, m_match) - gap);
    area.adjust(0, 6, 0, -6);
    const bool hasDate = !m_date.isEmpty();
    const QRectF title(area.left(), area.top(), area.width(), hasDate ? area.height() * 0.55 : area.height());
    painter.setFont(Typography::caption());
    Typography::drawElided(painter, QRectF(title.bottomLeft(), area.bottomRight()), m_date);
    painter.setFont(Typography::resultTitle());
    painter.setPen(Palette::textPrimary);
    Typography::drawElided(painter, title, m_title);
}

} // namespace nubble
