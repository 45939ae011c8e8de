#include "Search/ChatSearchWindow.h"

#include "Platform/MainThread.h"
#include "Search/ChatSearchView.h"
#include "Search/KeyPanel.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr QSize viewSize(680, 460);

} // namespace

ChatSearchWindow::ChatSearchWindow(const Home &home, Surroundings surroundings, QObject *parent)
    : QObject(parent), m_surroundings(std::move(surroundings)), m_search(home, m_surroundings.openLink),
      m_window(
          u"Search Chats"_s, [this] { return makePanel(); }, m_surroundings.makeSurface)
{
    connect(&m_window, &FloatingWindow::closed, this, &ChatSearchWindow::closed);
}

QWidget *ChatSearchWindow::makePanel()
{
    m_view = new ChatSearchView(m_search, m_surroundings.clock, m_surroundings.preferences);
    connect(m_view, &ChatSearchView::closeWanted, &m_window, &FloatingWindow::close);
    connect(m_view, &ChatSearchView::linkActivated, this, m_surroundings.openLink);
    return new KeyPanel(m_view);
}

void ChatSearchWindow::show()
{
    assertMainThread("Nubble/Search/ChatSearchWindow");
    m_search.loadCategories();
    m_search.schedule(true);
    m_window.openAt(m_surroundings.place(viewSize));
    m_view->focusQuery();
}

void ChatSearchWindow::toggle()
{
    if (isOpen())
        m_window.close();
    else
        show();
}

} // namespace nubble
