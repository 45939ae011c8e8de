#include "Platform/InstanceClient.h"

#include <dbus/dbus.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <poll.h>
#include <unistd.h>

#include "Platform/Freedesktop/ControlNames.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

using Kind = InstanceAnswer::Kind;
using std::chrono::steady_clock;

struct Unref {
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};
using Message = std::unique_ptr<DBusMessage, Unref>;

std::string valueOf(const char *variable)
{
    const char *value = std::getenv(variable);
    return value ? value : std::string();
}

// Empty where no bus has been set up: libdbus would try to start one, which takes its time.
std::string address()
{
    std::string named = valueOf("DBUS_SESSION_BUS_ADDRESS");
    const std::string socket = valueOf("XDG_RUNTIME_DIR") + "/bus";
    if (!named.empty() || ::access(socket.c_str(), F_OK) != 0)
        return named;
    char *escaped = dbus_address_escape_value(socket.c_str());
    std::string usual = std::string("unix:path=") + escaped;
    dbus_free(escaped);
    return usual;
}

Kind kindOf(std::string_view error)
{
    if (error == DBUS_ERROR_SERVICE_UNKNOWN || error == DBUS_ERROR_NAME_HAS_NO_OWNER)
        return Kind::NotOwned;
    for (const char *foreign :
         {DBUS_ERROR_UNKNOWN_OBJECT, DBUS_ERROR_UNKNOWN_METHOD, DBUS_ERROR_UNKNOWN_INTERFACE})
        if (error == foreign)
            return Kind::Foreign;
    for (const char *silent :
         {DBUS_ERROR_NO_REPLY, DBUS_ERROR_TIMEOUT, DBUS_ERROR_TIMED_OUT, DBUS_ERROR_DISCONNECTED})
        if (error == silent)
            return Kind::Silence;
    return Kind::Error;
}

// The first value, if it is a text.
std::string textOf(DBusMessage *message)
{
    const char *text = nullptr;
    if (!dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID))
        return {};
    return text;
}

InstanceAnswer answerOf(DBusMessage *reply)
{
    if (dbus_message_get_type(reply) != DBUS_MESSAGE_TYPE_ERROR)
        return {Kind::Reply, textOf(reply)};
    return {kindOf(dbus_message_get_error_name(reply)), textOf(reply)};
}

// Text in another encoding would not be taken; most of these are like Latin-1.
std::string validUtf8(const std::string &text)
{
    if (dbus_validate_utf8(text.c_str(), nullptr))
        return text;
    std::string valid;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte >= 0x80)
            valid += static_cast<char>(0xc0 | byte >> 6);
        valid += static_cast<char>(byte < 0x80 ? byte : 0x80 | (byte & 0x3f));
    }
    return valid;
}

void append(DBusMessage *call, const InstanceClient::Argument &argument)
{
    if (const auto *text = std::get_if<std::string>(&argument)) {
        const std::string valid = validUtf8(*text);
        const char *bytes = valid.c_str();
        dbus_message_append_args(call, DBUS_TYPE_STRING, &bytes, DBUS_TYPE_INVALID);
    } else {
        dbus_message_append_args(call, DBUS_TYPE_INT32, std::get_if<int>(&argument), DBUS_TYPE_INVALID);
    }
}

DBusHandlerResult note(DBusConnection *, DBusMessage *message, void *news)
{
    if (dbus_message_is_signal(message, ControlNames::interface, ControlNames::statusChanged)
        || dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameOwnerChanged"))
        *static_cast<bool *>(news) = true;
    return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}

} // namespace

bool InstanceClient::isBusSetUp()
{
    return !address().empty();
}

InstanceClient::InstanceClient(std::string serviceName) : m_service(std::move(serviceName)) { }

InstanceClient::~InstanceClient()
{
    close();
}

void InstanceClient::close()
{
    if (!m_bus)
        return;
    dbus_connection_close(m_bus);
    dbus_connection_unref(m_bus);
    m_bus = nullptr;
}

bool InstanceClient::connect()
{
    if (m_state != State::Unconnected)
        return m_state == State::Connected;
    m_state = State::NoBus;
    const std::string bus = address();
    if (bus.empty())
        return false;
    dbus_connection_set_change_sigpipe(FALSE); // which would stay ignored, by what is run afterwards as well
    m_bus = dbus_connection_open_private(bus.c_str(), nullptr);
    if (!m_bus)
        return false;
    const Message hello(
        dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello"));
    const Message reply(answerTo(hello.get(), steady_clock::now() + 2s));
    const bool welcome = reply && dbus_message_get_type(reply.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
    if (welcome)
        m_state = State::Connected;
    else if (dbus_connection_get_is_connected(m_bus))
        m_state = State::Stuck;
    if (!welcome)
        close();
    return welcome;
}

// None when there is none in time. The library's own waiting knows no limit while the bus does not read.
DBusMessage *InstanceClient::answerTo(DBusMessage *call, Deadline deadline)
{
    DBusPendingCall *pending = nullptr;
    if (!dbus_connection_send_with_reply(m_bus, call, &pending, DBUS_TIMEOUT_INFINITE) || !pending)
        return nullptr;
    bool connected = true;
    while (connected && !dbus_pending_call_get_completed(pending)) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
        if (left.count() <= 0)
            break;
        connected = dbus_connection_read_write_dispatch(m_bus, static_cast<int>(left.count()));
    }
    DBusMessage *reply = nullptr;
    if (dbus_pending_call_get_completed(pending))
        reply = dbus_pending_call_steal_reply(pending);
    else
        dbus_pending_call_cancel(pending);
    dbus_pending_call_unref(pending);
    return reply;
}

InstanceAnswer InstanceClient::call(
    const char *method, const std::vector<Argument> &arguments, std::chrono::milliseconds patience)
{
    if (!connect())
        return {m_state == State::Stuck ? Kind::BusSilence : Kind::NotOwned, {}};
    const Message call(dbus_message_new_method_call(
        m_service.c_str(), ControlNames::objectPath, ControlNames::interface, method));
    dbus_message_set_auto_start(call.get(), FALSE);
    for (const Argument &argument : arguments)
        append(call.get(), argument);
    const Message reply(answerTo(call.get(), steady_clock::now() + patience));
    return reply ? answerOf(reply.get()) : InstanceAnswer{Kind::Silence, {}};
}

void InstanceClient::addMatch(const std::string &rule)
{
    dbus_bus_add_match(m_bus, rule.c_str(), nullptr); // whose answer is not waited for
}

void InstanceClient::watch()
{
    dbus_connection_add_filter(m_bus, note, &m_news, nullptr);
    addMatch(
        "type='signal',sender='" + m_service + "',interface='" + ControlNames::interface + "',member='"
        + ControlNames::statusChanged + "'");
    addMatch(
        "type='signal',sender='" DBUS_SERVICE_DBUS "',member='NameOwnerChanged',arg0='" + m_service + "'");
}

InstanceClient::News InstanceClient::waitForNews()
{
    int socket = -1;
    dbus_connection_get_unix_fd(m_bus, &socket);
    while (true) {
        while (dbus_connection_dispatch(m_bus) == DBUS_DISPATCH_DATA_REMAINS) { }
        if (m_news) {
            m_news = false;
            return News::Instance;
        }
        if (!dbus_connection_get_is_connected(m_bus))
            return News::BusLost;
        std::array<pollfd, 2> awaited{pollfd{socket, POLLIN, 0}, pollfd{STDOUT_FILENO, 0, 0}};
        ::poll(awaited.data(), awaited.size(), -1);
        if (awaited[1].revents != 0)
            return News::NobodyReads;
        dbus_connection_read_write(m_bus, 0);
    }
}

} // namespace nubble
