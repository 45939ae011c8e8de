#include "Shell/Defaults.h"

#include <QLocale>

#include <chrono>
#include <cmath>

#include "Platform/Logging.h"
#include "Platform/MainThread.h"
#include "Shell/IniText.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

// Serialised objects belong to some other program.
std::optional<DefaultsFile::Content> contentOf(const DefaultsFile &file)
{
    auto content = file.read();
    if (content && !IniText::holdsObjects(content->bytes))
        return content;
    qCDebug(logShell) << file.name() << "is left alone: unreadable, too large, or with serialised objects";
    return std::nullopt;
}

} // namespace

Defaults::Defaults(const QString &file) : m_file(file)
{
    if (const auto content = contentOf(m_file))
        m_values = IniText::valuesIn(content->bytes);
    m_writing.setSingleShot(true);
    m_writing.callOnTimeout([this] { synchronize(); });
}

Defaults::~Defaults()
{
    synchronize();
}

QString Defaults::fileOf(const QString &domain, const QString &configFolder)
{
    return configFolder + u'/' + domain + u".conf";
}

bool Defaults::contains(const QString &key) const
{
    return m_values.contains(IniText::keyOf(key));
}

std::optional<QString> Defaults::string(const QString &key) const
{
    const auto value = m_values.constFind(IniText::keyOf(key));
    return value == m_values.cend() ? std::nullopt : IniText::textOf(*value);
}

std::optional<double> Defaults::number(const QString &key) const
{
    bool isNumber = false;
    const double value = string(key).value_or(QString()).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<bool> Defaults::boolean(const QString &key) const
{
    const std::optional<QString> text = string(key);
    if (text == u"true")
        return true;
    return text == u"false" ? std::optional(false) : std::nullopt;
}

void Defaults::set(const QString &key, const QString &value)
{
    put(IniText::keyOf(key), IniText::valueOf(value));
}

void Defaults::set(const QString &key, double value)
{
    put(IniText::keyOf(key), QByteArray::number(value, 'g', QLocale::FloatingPointShortest));
}

void Defaults::set(const QString &key, bool value)
{
    put(IniText::keyOf(key), value ? "true" : "false");
}

void Defaults::copy(const QString &key, const Defaults &from)
{
    const QByteArray name = IniText::keyOf(key);
    put(name, from.m_values.value(name));
}

void Defaults::put(const QByteArray &key, const QByteArray &value)
{
    assertMainThread("Nubble/Shell/Defaults");
    if (const auto known = m_values.constFind(key); known != m_values.cend() && *known == value)
        return;
    m_values.insert(key, value);
    m_pending.insert(key, value);
    writeSoon();
}

void Defaults::writeSoon()
{
    constexpr auto soon = 200ms;
    if (!m_held && !m_pending.isEmpty() && !m_writing.isActive())
        m_writing.start(soon);
}

void Defaults::setHeld(bool held)
{
    m_held = held;
    if (held)
        m_writing.stop();
    else
        writeSoon();
}

void Defaults::synchronize()
{
    assertMainThread("Nubble/Shell/Defaults");
    m_writing.stop();
    if (m_pending.isEmpty())
        return;
    const auto content = contentOf(m_file);
    if (!content)
        return;
    DefaultsFile::Content changed = *content;
    for (auto value = m_pending.cbegin(); value != m_pending.cend(); ++value)
        changed.bytes = IniText::withValue(changed.bytes, value.key(), value.value());
    if (changed.bytes != content->bytes && !m_file.replace(changed))
        return;
    m_values = IniText::valuesIn(changed.bytes);
    m_pending.clear();
}

} // namespace nubble
