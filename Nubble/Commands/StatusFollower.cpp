#include "Commands/StatusFollower.h"

#include <chrono>
#include <poll.h>
#include <unistd.h>

#include "Commands/CommandLine.h"
#include "Platform/InstanceClient.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

using News = InstanceClient::News;

class Follower {
public:
    explicit Follower(bool json) : m_json(json) { }

    // False when nobody reads.
    bool printInstance(InstanceClient &client)
    {
        const InstanceAnswer answer = client.call("StatusText", {m_json ? "json-line" : "line", 0}, 2s);
        return answer.kind == InstanceAnswer::Kind::Reply ? printLine(answer.text) : printAbsence();
    }

    bool printAbsence()
    {
        return printLine(
            m_json ? R"({"class":"off","percentage":0,"source":"none","text":"not running",)"
                     R"("tooltip":"Nubble is not running."})"
                   : "not running");
    }

private:
    bool printLine(const std::string &line)
    {
        if (line == m_printed)
            return true;
        m_printed = line;
        return print(line + '\n') == ExitDone;
    }

    bool m_json;
    std::string m_printed;
};

// False when nobody reads any more.
bool readsStill(std::chrono::milliseconds time)
{
    pollfd output{STDOUT_FILENO, 0, 0};
    return ::poll(&output, 1, static_cast<int>(time.count())) <= 0;
}

// Until the bus is lost. False when nobody reads any more.
bool followOn(InstanceClient &client, Follower &follower)
{
    client.watch();
    while (follower.printInstance(client)) {
        const News news = client.waitForNews();
        if (news != News::Instance)
            return news == News::BusLost;
    }
    return false;
}

} // namespace

int followStatus(const CommandLine &line)
{
    Follower follower(line.json);
    do {
        InstanceClient client(line.serviceName());
        if (client.connect() && !followOn(client, follower))
            break;
        if (!follower.printAbsence())
            break;
    } while (readsStill(5s));
    return ExitDone;
}

} // namespace nubble
