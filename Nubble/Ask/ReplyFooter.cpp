#include "Ask/ReplyFooter.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QVBoxLayout>

#include "Ask/ThinkingDots.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/ContextMenu.h"
#include "Widgets/MenuEntry.h"
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
    m_problem->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_problem, &QWidget::customContextMenuRequested, this, &ReplyFooter::openMenu);

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

// With the entries of the toolkit's own, which cannot be asked for.
void ReplyFooter::openMenu(const QPoint &point)
{
    const QString selected = m_problem->selectedText().remove(u'\u200b'); // where it may be broken
    openContextMenu(
        *m_problem, m_problem->mapToGlobal(point),
        {{.title = u"Copy"_s,
          .action = [selected] { QGuiApplication::clipboard()->setText(selected); },
          .enabled = !selected.isEmpty(),
          .shortcut = QKeySequence::Copy},
         {.title = u"Select All"_s,
          .action = [this] { m_problem->setSelection(0, static_cast<int>(m_problem->text().size())); },
          .shortcut = QKeySequence::SelectAll}});
}

void ReplyFooter::setMotionReduced(bool reduced)
{
    m_dots->setMotionReduced(reduced);
}

} // namespace nubble
