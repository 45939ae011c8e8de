#include "Ask/ReplyFooter.h"

#include <QAccessible>
#include <QLabel>
#include <QVBoxLayout>

#include "Ask/ThinkingDots.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

ReplyFooter::ReplyFooter(QWidget *parent) : QWidget(parent), m_dots(new ThinkingDots), m_problem(new QLabel)
{
    m_problem->setFont(Typography::reading());
    m_problem->setWordWrap(true);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QPalette colours = m_problem->palette();
    colours.setColor(QPalette::WindowText, Palette::problem);
    colours.setColor(QPalette::Text, Palette::problem); // as its text can be selected
    colours.setColor(QPalette::Highlight, Palette::selection);
    m_problem->setPalette(colours);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_dots, 0, Qt::AlignLeft);
    layout->addWidget(m_problem);
    show(false, {});
}

void ReplyFooter::show(bool awaits, const std::optional<QString> &problem)
{
    const QString text = CardMetrics::breakable(problem.value_or(QString()));
    const bool isNews = problem && m_problem->text() != text;
    m_dots->setVisible(awaits);
    m_problem->setText(text);
    m_problem->setVisible(problem.has_value());
    if (isNews) {
        QAccessibleEvent alert(m_problem, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ReplyFooter::setMotionReduced(bool reduced)
{
    m_dots->setMotionReduced(reduced);
}

} // namespace nubble
