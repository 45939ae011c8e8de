#include "Commands/ControlObject.h"

#include <QCryptographicHash>
#include <QJsonDocument>

#include "Commands/AppCommands.h"
#include "Commands/CommandLine.h"

using namespace Qt::StringLiterals;

namespace nubble {

QString ControlObject::serviceName(const CommandLine &line)
{
    QString name = u"com.brevandel.nubble"_s;
    if (!line.home)
        return name;
    const QByteArray hash = QCryptographicHash::hash(line.home->toUtf8(), QCryptographicHash::Sha1);
    return name + u".home_"_s + QString::fromLatin1(hash.toHex());
}

ControlObject::ControlObject() : m_adaptor(new ControlAdaptor(this)) { }

void ControlObject::serve(AppCommands &commands)
{
    m_adaptor->serve(commands);
}

void ControlAdaptor::Show()
{
    m_commands->show();
}

void ControlAdaptor::Hide()
{
    m_commands->hide();
}

void ControlAdaptor::Toggle()
{
    m_commands->toggleVisible();
}

void ControlAdaptor::OpenSessions()
{
    answer(m_commands->openCard(PanelMode::sessions()));
}

void ControlAdaptor::Ask(const QString &question)
{
    AddonRequest request{AddonRequest::Action::AskClaude};
    if (!question.isEmpty())
        request.question = question;
    perform(request);
}

void ControlAdaptor::Search()
{
    perform({AddonRequest::Action::SearchChats});
}

void ControlAdaptor::StartNotes()
{
    perform({AddonRequest::Action::StartNotes});
}

void ControlAdaptor::StopNotes()
{
    perform({AddonRequest::Action::StopNotes});
}

void ControlAdaptor::perform(const AddonRequest &request)
{
    answer(m_commands->performFromOutside(request));
}

void ControlAdaptor::answer(const Outcome &outcome)
{
    if (!outcome.isDone())
        m_object.sendErrorReply(u"com.brevandel.nubble.Error.Refused"_s, outcome.why());
}

QString ControlAdaptor::Status()
{
    return QString::fromUtf8(QJsonDocument(m_commands->status()).toJson(QJsonDocument::Compact));
}

void ControlAdaptor::Restart()
{
    m_commands->restart();
}

void ControlAdaptor::Quit()
{
    m_commands->quit();
}

} // namespace nubble
