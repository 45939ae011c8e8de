#include "Commands/Control.h"

#include <QCryptographicHash>
#include <QDBusMessage>

#include "AppDelegate.h"
#include "Commands/CommandLine.h"

using namespace Qt::StringLiterals;

namespace nubble {

QString Control::serviceName(const CommandLine &line)
{
    QString name = u"com.brevandel.nubble"_s;
    if (!line.home)
        return name;
    const QByteArray hash = QCryptographicHash::hash(line.home->toUtf8(), QCryptographicHash::Sha1);
    return name + u".home_"_s + QString::fromLatin1(hash.toHex());
}

Control::Control(QObject *exported) : QDBusAbstractAdaptor(exported) { }

void Control::serve(AppDelegate &delegate)
{
    m_delegate = &delegate;
}

void Control::Show()
{
    m_delegate->show();
}

void Control::Hide()
{
    m_delegate->commands().hide();
}

void Control::Toggle()
{
    m_delegate->commands().toggleVisible();
}

void Control::OpenSessions()
{
    m_delegate->openSessions();
}

void Control::Ask(const QString &question, const QDBusMessage &message)
{
    AddonRequest request{AddonRequest::Action::AskClaude};
    if (!question.isEmpty())
        request.question = question;
    perform(request, message);
}

void Control::Search(const QDBusMessage &message)
{
    perform({AddonRequest::Action::SearchChats}, message);
}

void Control::StartNotes(const QDBusMessage &message)
{
    perform({AddonRequest::Action::StartNotes}, message);
}

void Control::StopNotes(const QDBusMessage &message)
{
    perform({AddonRequest::Action::StopNotes}, message);
}

void Control::perform(const AddonRequest &request, const QDBusMessage &message)
{
    const std::optional<QString> refusal = m_delegate->performFromOutside(request);
    if (!refusal)
        return;
    message.setDelayedReply(true); // this is the reply
    SessionBus::connection().send(
        message.createErrorReply(u"com.brevandel.nubble.Error.Refused"_s, *refusal));
}

void Control::Restart()
{
    m_delegate->commands().restart();
}

void Control::Quit()
{
    m_delegate->commands().quit();
}

QString Control::Status()
{
    return m_delegate->status();
}

} // namespace nubble
