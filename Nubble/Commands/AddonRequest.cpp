#include "Commands/AddonRequest.h"

using namespace Qt::StringLiterals;

namespace nubble {

Addon addonOf(const AddonRequest &request)
{
    switch (request.action) {
    case AddonRequest::Action::SearchChats:
        return Addon::Search;
    case AddonRequest::Action::AskClaude:
        return Addon::Ask;
    case AddonRequest::Action::StartNotes:
    case AddonRequest::Action::StopNotes:
        break;
    }
    return Addon::Notes;
}

std::optional<AddonRequest> requestFrom(const QString &name, const QMap<QString, QString> &userInfo)
{
    using Action = AddonRequest::Action;
    if (name == u"ask") {
        const auto question = userInfo.constFind(u"question"_s);
        if (question == userInfo.constEnd())
            return AddonRequest{Action::AskClaude};
        return AddonRequest{Action::AskClaude, *question};
    }
    if (name == u"notes")
        return AddonRequest{userInfo.value(u"action"_s) == u"stop" ? Action::StopNotes : Action::StartNotes};
    return std::nullopt;
}

} // namespace nubble
