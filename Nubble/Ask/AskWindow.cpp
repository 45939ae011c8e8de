#include "Ask/AskWindow.h"

#include <unistd.h>

#include "Ask/AskView.h"
#include "Platform/MainThread.h"
#include "Platform/ScreenCapture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr QSize viewSize(420, 540);
constexpr auto fadesWithin = 1s; // what has been closed is gone from the screen by then

} // namespace

AskWindow::AskWindow(const Home &home, Surroundings surroundings, QObject *parent)
    : QObject(parent), m_surroundings(std::move(surroundings)), m_ask(home),
      m_window(
          u"Ask Claude"_s, [this] { return makeView(); }, m_surroundings.makeSurface),
      m_settling([this] { return m_surroundings.capture.grabPart(m_window.frame()); }),
      m_capturer(m_surroundings.workspace, m_surroundings.capture)
{
    connect(&m_window, &FloatingWindow::closed, this, [this] { m_sinceClosed.start(); });
    connect(&m_window, &FloatingWindow::closed, this, &AskWindow::closed);
    connect(&m_settling, &ScreenSettling::settled, this, &AskWindow::grab);
}

QWidget *AskWindow::makeView()
{
    auto *view = new AskView(m_ask, m_surroundings.preferences);
    connect(view, &AskView::newConversationWanted, this, [this] { activate(); });
    connect(view, &AskView::screenshotWanted, this, &AskWindow::recapture);
    connect(view, &AskView::closeWanted, &m_window, &FloatingWindow::close);
    connect(view, &AskView::linkActivated, this, m_surroundings.openLink);
    return view;
}

void AskWindow::activate(const std::optional<QString> &question)
{
    assertMainThread("Nubble/Ask/AskWindow");
    m_ask.reset();
    m_question = question;
    shoot();
}

void AskWindow::recapture()
{
    shoot();
}

void AskWindow::toggle()
{
    if (isOpen())
        m_window.close();
    else if (m_opens)
        m_opens = false;
    else
        activate();
}

void AskWindow::screenshot()
{
    if (isOpen() || !m_ask.messages().isEmpty())
        recapture();
    else
        activate();
}

void AskWindow::shoot()
{
    assertMainThread("Nubble/Ask/AskWindow");
    noteFront();
    ++m_shot;
    m_ask.setCapturing(true);
    m_opens = !isOpen();
    if (m_settling.isActive())
        return;
    const bool isFading = m_sinceClosed.isValid() && !m_sinceClosed.hasExpired(fadesWithin / 1ms);
    if (m_opens && !isFading) {
        grab();
    } else {
        const QImage before = m_opens ? QImage() : m_surroundings.capture.grabPart(m_window.frame());
        m_window.setUnseen(true);
        m_settling.start(before);
    }
}

// While the window itself is in front, it is still about the application that was before.
void AskWindow::noteFront()
{
    const std::optional<RunningApplication> front = m_surroundings.workspace.frontApplication();
    if (!front || front->pid != ::getpid())
        m_lastFront = front;
}

void AskWindow::grab()
{
    const auto done = [this, shot = m_shot](const ScreenContext &screen) {
        if (shot == m_shot)
            accept(screen);
    };
    const auto grabbed = [this, shot = m_shot] {
        if (shot == m_shot) // else it would be in the next picture
            appear();
    };
    m_capturer.capture(m_lastFront, done, grabbed);
}

void AskWindow::appear()
{
    m_window.setUnseen(false);
    if (m_opens)
        m_window.openAt(m_surroundings.place(viewSize));
    else if (isOpen())
        m_window.open();
    m_opens = false;
}

void AskWindow::accept(const ScreenContext &screen)
{
    m_ask.setAttachment(screen);
    if (const std::optional<QString> question = std::exchange(m_question, std::nullopt))
        m_ask.send(*question);
    m_ask.setCapturing(false); // lets what the user has written go, which stays written behind that question
}

} // namespace nubble
