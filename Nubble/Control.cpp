#include "Control.h"

#include "AppDelegate.h"

namespace nubble {

Control::Control(QObject *exported) : QDBusAbstractAdaptor(exported) { }

void Control::serve(AppDelegate &delegate)
{
    m_delegate = &delegate;
}

void Control::Show()
{
    m_delegate->show();
}

void Control::OpenSessions()
{
    m_delegate->openSessions();
}

QString Control::Status()
{
    return m_delegate->status();
}

} // namespace nubble
