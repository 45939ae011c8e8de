#include "Shell/HotKeys.h"

#include <algorithm>

#include "Platform/HotKeyService.h"
#include "Platform/MainThread.h"

namespace nubble {

HotKeys::HotKeys(HotKeyService &service, QObject *parent) : QObject(parent), m_service(service)
{
    connect(&service, &HotKeyService::pressed, this, &HotKeys::run, Qt::QueuedConnection);
}

void HotKeys::add(HotKey key, const std::function<void()> &action)
{
    add(keysOf(key), keysText(key), actionName(key), action);
}

void HotKeys::add(
    QKeyCombination keys, const QString &keysText, const QString &name, std::function<void()> action)
{
    assertMainThread("Nubble/Shell/HotKeys");
    const bool isFree = std::ranges::count(m_added, keys, &Added::keys) == 0;
    m_added.push_back({keys, keysText, name, std::move(action)});
    if (isFree)
        (void)m_service.grab(static_cast<quint32>(m_added.size()), keys); // another program's stays with it
}

std::vector<HotKeys::Entry> HotKeys::entries() const
{
    std::vector<Entry> result;
    for (const Added &each : m_added)
        result.push_back(
            {each.keysText, each.name, m_service.isGrabbed(static_cast<quint32>(result.size() + 1))});
    return result;
}

void HotKeys::run(quint32 id) const
{
    if (id > 0 && id <= m_added.size())
        m_added[id - 1].action();
}

} // namespace nubble
