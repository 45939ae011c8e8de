#include "Ask/EmptyConversation.h"

#include <QLabel>
#include <QVBoxLayout>

#include "Ask/AskTexts.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/Palette.h"
#include "Widgets/PillButton.h"
#include "Widgets/SymbolSign.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

EmptyConversation::EmptyConversation(QWidget *parent)
    : QWidget(parent), m_invitation(CardMetrics::makeNote(this))
{
    m_invitation->setFont(Typography::reading());
    m_invitation->setAlignment(Qt::AlignCenter);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 0, 24, 0);
    layout->setSpacing(8);
    layout->addStretch(3);
    layout->addWidget(
        new SymbolSign(u"text.bubble.fill"_s, SymbolSign::large, Palette::textSecondary), 0,
        Qt::AlignHCenter);
    layout->addSpacing(4);
    layout->addWidget(m_invitation);
    layout->addSpacing(14);
    for (const QString &question : suggestions()) {
        auto *suggestion = new PillButton(question);
        layout->addWidget(suggestion, 0, Qt::AlignHCenter);
        connect(
            suggestion, &QAbstractButton::clicked, this, [this, question] { Q_EMIT suggested(question); });
    }
    layout->addStretch(4);
}

void EmptyConversation::setInvitation(const QString &invitation)
{
    m_invitation->setText(invitation);
}

} // namespace nubble
