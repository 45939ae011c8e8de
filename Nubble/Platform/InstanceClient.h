#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct DBusConnection;
struct DBusMessage;

namespace nubble {

// What became of a call.
struct InstanceAnswer {
    enum class Kind {
        Reply,
        NotOwned,  // there is nobody to call, or no bus
        Foreign,   // the owner of the name is another program
        Error,     // the owner says why not
        Silence,   // it has not answered in time, or has gone meanwhile
        BusSilence // the bus has not
    };

    Kind kind = Kind::NotOwned;
    std::string text; // of the reply, or why not; UTF-8
};

// Reaches the instance that owns a name among the processes of the user, over the session bus. Without the
// toolkit, which a short command has no time to load, and which would wait for a bus that is stuck for ever.
// Any thread, but one at a time.
class InstanceClient {
public:
    using Argument = std::variant<std::string, int>;
    enum class News {
        Instance,   // its status is another one, it has come, or it has gone
        BusLost,    // which is never the case again for this object
        NobodyReads // standard output has been closed
    };

    // Whether the environment names a bus.
    [[nodiscard]] static bool isBusSetUp();

    explicit InstanceClient(std::string serviceName);
    InstanceClient(const InstanceClient &) = delete;
    InstanceClient &operator=(const InstanceClient &) = delete;
    ~InstanceClient();

    // Waits for the bus for two seconds at most; false when it does not answer or is not there.
    [[nodiscard]] bool connect();

    // Calls a method of the instance's control object and waits for its answer, for as long as that.
    [[nodiscard]] InstanceAnswer call(
        const char *method, const std::vector<Argument> &arguments, std::chrono::milliseconds patience);

    // From now on waitForNews() notices. Needs a connection.
    void watch();
    // Since the last one. Sleeps until there are any.
    [[nodiscard]] News waitForNews();

private:
    enum class State { Unconnected, Connected, NoBus, Stuck };
    using Deadline = std::chrono::steady_clock::time_point;

    [[nodiscard]] DBusMessage *answerTo(DBusMessage *call, Deadline deadline);
    void addMatch(const std::string &rule);
    void close();

    std::string m_service;
    DBusConnection *m_bus = nullptr;
    State m_state = State::Unconnected;
    bool m_news = false;
};

} // namespace nubble
