#pragma once

#include "Layout.h"
#include "RecentCommands.h"

#include <map>
#include <memory>
#include <vector>

namespace host {

// Gives in the commands that come, and has an answer for each: once it has ended, or at once where it is
// refused. One that was sent twice is carried out once. One thread; the ends of commands come on any.
class CommandDesk {
public:
    static constexpr std::size_t mostOpen = 1'000;

    struct Answer {
        CommandRequest request;
        CommandResult result;
    };

    explicit CommandDesk(CommandTaker& commandTaker);
    CommandDesk(const CommandDesk&) = delete;
    CommandDesk& operator=(const CommandDesk&) = delete;
    ~CommandDesk();

    void take(const CommandRequest& request, RecentCommands::Time now);
    // Those that are there since the last call.
    std::vector<Answer> takeAnswers();
    // Answers for all that are still open: how they end is not known.
    void abandon();

    std::uint64_t taken() const { return takenCount; }
    std::uint64_t refused() const { return refusedCount; }
    std::uint64_t repeated() const { return repeatedCount; }

private:
    struct Ends;

    void refuse(const CommandRequest& request, const std::string& why);

    CommandTaker& taker;
    const std::shared_ptr<Ends> ends; // reached by results even when this is gone
    std::map<std::uint64_t, CommandRequest> open;
    std::vector<Answer> answers;
    RecentCommands recent;
    std::uint64_t lastTicket = 0;
    std::uint64_t takenCount = 0;
    std::uint64_t refusedCount = 0;
    std::uint64_t repeatedCount = 0;
};

} // namespace host
