#pragma once

#include <QByteArray>
#include <QList>

#include <memory>
#include <sys/types.h>

namespace nubble {

// A program that a test runs; it ends with this object, and at the latest with the test program, even if that
// crashes.
class ChildProgram {
public:
    // `announced`, when given, receives the first line that the program writes to descriptor 3.
    explicit ChildProgram(const QList<QByteArray> &command, QByteArray *announced = nullptr);
    ChildProgram(const ChildProgram &) = delete;
    ChildProgram &operator=(const ChildProgram &) = delete;
    ~ChildProgram();

private:
    pid_t m_pid;
};

// A display of the test's own with openbox on it, at 96 dots per inch, whatever the machine shows. A display
// test makes one in main() before its QApplication, with PRIVATE_DESKTOP_MAIN; it needs nothing from the
// environment but the programs Xvfb and openbox.
class PrivateDesktop {
public:
    PrivateDesktop();

private:
    QByteArray m_display;
    std::unique_ptr<ChildProgram> m_server;
    std::unique_ptr<ChildProgram> m_windowManager;
};

// The same for the session bus.
class PrivateSessionBus {
public:
    PrivateSessionBus();

private:
    QByteArray m_address;
    std::unique_ptr<ChildProgram> m_daemon;
};

} // namespace nubble

#define PRIVATE_DESKTOP_MAIN(TestClass)                                                                      \
    int main(int argc, char *argv[])                                                                         \
    {                                                                                                        \
        const nubble::PrivateDesktop desktop;                                                                \
        QApplication application(argc, argv);                                                                \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
