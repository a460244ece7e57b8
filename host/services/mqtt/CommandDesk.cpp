#include "CommandDesk.h"

#include "commands/CommandText.h"

#include <mutex>
#include <utility>

namespace host {

namespace {

CommandResult resultOf(const CommandEnd& end) {
    if (end.result == Halvex::DriverErrorResult::Success)
        return {true, resultWord(end.result), {}};
    if (end.wasRefused)
        return {false, "refused", "the controller refused it"};
    return {false, resultWord(end.result), resultText(end.result)};
}

} // namespace

struct CommandDesk::Ends {
    std::mutex mutex; // guards what follows
    std::vector<std::pair<std::uint64_t, CommandEnd>> list;
};

CommandDesk::CommandDesk(CommandTaker& commandTaker) : taker(commandTaker), ends(std::make_shared<Ends>()) {}

CommandDesk::~CommandDesk() = default;

void CommandDesk::refuse(const CommandRequest& request, const std::string& why) {
    ++refusedCount;
    answers.push_back({request, {false, "refused", why}});
}

void CommandDesk::take(const CommandRequest& request, RecentCommands::Time now) {
    if (!request.refusal.empty()) {
        refuse(request, request.refusal);
        return;
    }
    if (open.size() >= mostOpen) {
        refuse(request, std::to_string(mostOpen) + " commands wait for their results; send it again later");
        return;
    }
    if (!request.key.empty())
        if (const RecentCommands::Known* const known = recent.findOrTake(request.key, now)) {
            ++repeatedCount;
            if (known->result)
                answers.push_back({request, *known->result});
            return;
        }
    const std::uint64_t ticket = ++lastTicket;
    const std::string refusal = taker.submit(request.command, [shared = ends, ticket](const CommandEnd& end) {
        const std::lock_guard<std::mutex> lock(shared->mutex);
        shared->list.emplace_back(ticket, end);
    });
    if (!refusal.empty()) {
        recent.noteResult(request.key, {false, "refused", refusal});
        refuse(request, refusal);
        return;
    }
    ++takenCount;
    open.emplace(ticket, request);
}

std::vector<CommandDesk::Answer> CommandDesk::takeAnswers() {
    std::vector<std::pair<std::uint64_t, CommandEnd>> ended;
    {
        const std::lock_guard<std::mutex> lock(ends->mutex);
        ended.swap(ends->list);
    }
    for (const auto& [ticket, end] : ended) {
        const auto found = open.find(ticket);
        if (found == open.end())
            continue; // abandoned
        const CommandResult result = resultOf(end);
        recent.noteResult(found->second.key, result);
        answers.push_back({std::move(found->second), result});
        open.erase(found);
    }
    return std::exchange(answers, {});
}

void CommandDesk::abandon() {
    for (const auto& [ticket, request] : open)
        answers.push_back(
            {request,
             {false, "channel error", "the host ends; whether the command was carried out is not known"}});
    open.clear();
}

} // namespace host
