#include "Shell/Defaults.h"

#include <QFileInfo>

#include <cmath>

#include "Platform/Logging.h"
#include "Platform/RegularFile.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// QSettings would wait for a FIFO, read a device without an end, and make objects of serialised ones.
bool isFitForSettings(const QString &file)
{
    constexpr qint64 enough = 1'000'000;
    if (!QFileInfo::exists(file))
        return true;
    const auto opened = RegularFile::open(file);
    const auto bytes = opened && opened->size() <= enough ? opened->read(0, enough) : std::nullopt;
    const bool isFit = bytes && !bytes->contains("@Variant(") && !bytes->contains("@DateTime(");
    if (!isFit)
        qCDebug(logShell) << file << "is left alone: unreadable, too large, or with serialised objects";
    return isFit;
}

} // namespace

// Nothing can be read from or written to a file "in" /dev/null.
Defaults::Defaults(const QString &file)
    : m_settings(isFitForSettings(file) ? file : u"/dev/null"_s + file, QSettings::IniFormat)
{
}

QString Defaults::fileOf(const QString &domain, const QString &configFolder)
{
    return configFolder + u'/' + domain + u".conf";
}

bool Defaults::contains(const QString &key) const
{
    return m_settings.contains(key);
}

std::optional<QString> Defaults::string(const QString &key) const
{
    const QVariant value = m_settings.value(key);
    if (value.metaType().id() == QMetaType::QString)
        return value.toString();
    return value.metaType().id() == QMetaType::Bool || value.metaType().id() == QMetaType::Double
        ? std::optional(value.toString()) // set during this run: not yet the text that the file holds
        : std::nullopt;
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
    m_settings.setValue(key, value);
}

void Defaults::set(const QString &key, double value)
{
    m_settings.setValue(key, value);
}

void Defaults::set(const QString &key, bool value)
{
    m_settings.setValue(key, value);
}

void Defaults::copy(const QString &key, const Defaults &from)
{
    m_settings.setValue(key, from.m_settings.value(key));
}

void Defaults::synchronize()
{
    m_settings.sync();
}

} // namespace nubble
