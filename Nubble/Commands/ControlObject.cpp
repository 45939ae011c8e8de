#include "Commands/ControlObject.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDateTime>
#include <QJsonDocument>

#include "Commands/AppCommands.h"
#include "Commands/StatusLine.h"
#include "Commands/StatusReport.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const auto refusal = u"com.brevandel.nubble.Error.Refused"_s;

} // namespace

ControlObject::ControlObject() : m_adaptor(new ControlAdaptor(this)) { }

void ControlObject::serve(AppCommands &commands)
{
    m_adaptor->serve(commands);
}

ControlAdaptor::ControlAdaptor(ControlObject *object) : QDBusAbstractAdaptor(object), m_object(*object)
{
    connect(&m_news, &StatusNews::changed, this, &ControlAdaptor::StatusChanged);
}

void ControlAdaptor::serve(AppCommands &commands)
{
    m_commands = &commands;
    connect(m_commands, &AppCommands::statusTouched, &m_news, [this] {
        m_news.consider([this] { return m_commands->status(); });
    });
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

void ControlAdaptor::Next()
{
    m_object.setDelayedReply(true);
    const auto reply = [bus = m_object.connection(), call = m_object.message()](const Outcome &outcome) {
        bus.send(outcome.isDone() ? call.createReply() : call.createErrorReply(refusal, outcome.why()));
    };
    m_commands->bringNext(reply);
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
        m_object.sendErrorReply(refusal, outcome.why());
}

void ControlAdaptor::NotificationsOn()
{
    m_commands->setNotifying(true);
}

void ControlAdaptor::NotificationsOff()
{
    m_commands->setNotifying(false);
}

QString ControlAdaptor::Status()
{
    return QString::fromUtf8(QJsonDocument(m_commands->status()).toJson(QJsonDocument::Compact));
}

QString ControlAdaptor::StatusText(const QString &format, int columns)
{
    const QJsonObject status = m_commands->status();
    const bool isJson = format.startsWith(u"json");
    if (!format.endsWith(u"line"))
        return isJson ? QString::fromUtf8(QJsonDocument(status).toJson(QJsonDocument::Indented))
                      : statusTable(status, columns, QDateTime::currentDateTime());
    m_news.begin(status);
    return isJson ? QString::fromUtf8(QJsonDocument(forStatusBars(status)).toJson(QJsonDocument::Compact))
                  : statusLine(status);
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
