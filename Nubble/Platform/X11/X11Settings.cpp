#include "Platform/X11/X11Settings.h"

#include <QtEndian>

#include "Platform/X11/X11Connection.h"

namespace nubble {

namespace {

enum class Kind : uint8_t { Number, Text, Colour };

constexpr qsizetype headerLength = 12; // byte order, serial, count

constexpr qsizetype padded(qsizetype length)
{
    return (length + 3) / 4 * 4;
}

// Reads one number after the other; what lies beyond the end is 0 and spoils the whole.
class Fields {
public:
    explicit Fields(const QByteArray &bytes) : m_bytes(bytes), m_isBigEndian(bytes.startsWith('\1')) { }

    template <typename T> T next()
    {
        const auto *at = m_bytes.constData() + m_at;
        m_at += static_cast<qsizetype>(sizeof(T));
        if (!isValid())
            return 0;
        return m_isBigEndian ? qFromBigEndian<T>(at) : qFromLittleEndian<T>(at);
    }
    QByteArray text(qsizetype length)
    {
        const qsizetype from = m_at;
        skip(padded(length));
        return isValid() ? m_bytes.mid(from, length) : QByteArray();
    }
    void skip(qsizetype length) { m_at = std::min(m_at + length, m_bytes.size() + 1); }
    [[nodiscard]] bool isValid() const { return m_at <= m_bytes.size(); }

private:
    const QByteArray &m_bytes;
    bool m_isBigEndian;
    qsizetype m_at = 0;
};

} // namespace

std::optional<int32_t> settingIn(const QByteArray &settings, const QByteArray &name)
{
    Fields fields(settings);
    fields.skip(headerLength);
    while (fields.isValid()) {
        const Kind kind{fields.next<uint8_t>()};
        fields.skip(1);
        const QByteArray key = fields.text(fields.next<uint16_t>());
        fields.skip(4); // when it was changed last
        if (kind == Kind::Number) {
            const auto value = fields.next<int32_t>();
            if (key == name && fields.isValid())
                return value;
        } else if (kind == Kind::Text) {
            fields.skip(padded(fields.next<uint32_t>()));
        } else if (kind == Kind::Colour) {
            fields.skip(8);
        } else {
            break;
        }
    }
    return std::nullopt;
}

X11Settings::X11Settings(std::shared_ptr<const X11Connection> x11)
    : m_x11(std::move(x11)), m_manager(m_x11, X11Atom::SettingsManager), m_watch(m_x11, {X11Atom::Settings})
{
    connect(&m_manager, &X11SelectionWatch::changed, this, &X11Settings::follow);
    connect(&m_watch, &X11PropertyWatch::changed, this, &X11Settings::read);
    follow();
}

void X11Settings::follow()
{
    if (m_manager.isOwned()) {
        // The same mask as Qt's own on this window, for there is one for each connection.
        const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        m_x11->ignoreErrors(xcb_change_window_attributes_checked(
            m_x11->get(), m_manager.owner(), XCB_CW_EVENT_MASK, &events));
        m_watch.setWindow(m_manager.owner());
    }
    read();
}

void X11Settings::read()
{
    constexpr uint32_t mostWords = 16 * 1024; // 64 KB
    std::optional<int32_t> value;
    if (m_manager.isOwned())
        value = settingIn(
            X11Property(*m_x11, m_manager.owner(), m_x11->atom(X11Atom::Settings), mostWords).text(),
            "Gtk/EnableAnimations");
    m_animates = value ? std::optional(*value != 0) : std::nullopt;
    Q_EMIT changed();
}

} // namespace nubble
