#pragma once

#include <QCoreApplication>
#include <QThread>

namespace nubble {

// Stops the program when it is reached from another thread than the application's. `source` names the calling
// source file.
inline void assertMainThread(const char *source)
{
    const QCoreApplication *application = QCoreApplication::instance();
    if (application && QThread::currentThread() != application->thread())
        qFatal("%s: called from another thread than the main one", source);
}

} // namespace nubble
