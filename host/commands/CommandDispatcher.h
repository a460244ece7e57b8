#pragma once

#include "Command.h"
#include "DriverCall.h"
#include "site/Site.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

class CRtu;

namespace host {

// Hands commands to the driver so that each gets exactly one result. The driver drops a waiting command
// without a word when a newer one like it comes, and sends the newest first. So it is never given two: of
// each line one driver call is on its way, the RTUs of a line take turns, and what an RTU has still to do
// waits here in its order.
//
// A call whose result does not come within its line's time limit is ended as TimeOut. The driver may still
// carry it out: nobody can take it back. Its CommandEnd tells how long the driver holds it.
//
// A channel that has lost an answer closes its link and opens it again in its next turn; in between the
// driver takes no command. One that comes then is kept and handed over again, until the line counts as down.
//
// States: working (as made), stopped (after stop, for good). One thread for all lines calls the driver and
// tells results; submit() is for any thread, also from within a CommandDone, stop() for any other than those.
// The site and the RTUs outlive it.
class CommandDispatcher : public CommandTaker {
public:
    using FindRtu = std::function<CRtu*(int channelId, int rtuId)>;
    using AskIfRefused = std::function<bool(int channelId, int rtuId)>;
    using TimeLimit = std::function<std::chrono::milliseconds(const Channel&)>;
    // Calls the driver's operation, as callDriver() does.
    using CallDriver = std::function<int(CRtu&, const CommandAction&, CReply*)>;

    // Commands that wait for an RTU behind the one in progress.
    static constexpr std::size_t mostWaiting = 1'000;
    // A line that has taken no command for so long is down: fifty turns of its channel.
    static constexpr std::chrono::milliseconds longestReopening{500};

    // Asks `findRtu` for every RTU of the site at once and never again. Asks `askIfRefused` on the channels'
    // threads whether a command that the driver takes for done was refused; it must outlive the RTUs. Throws
    // ThreadRefused.
    CommandDispatcher(const Site& commandedSite, const FindRtu& findRtu, AskIfRefused askIfRefused,
                      CallDriver driverCall = callDriver);
    CommandDispatcher(const Site& commandedSite, const FindRtu& findRtu, AskIfRefused askIfRefused,
                      const TimeLimit& timeLimit, CallDriver driverCall = callDriver);
    CommandDispatcher(const CommandDispatcher&) = delete;
    CommandDispatcher& operator=(const CommandDispatcher&) = delete;
    ~CommandDispatcher() override;

    std::string submit(const Command& command, CommandDone done) override;
    // Ends every command of which nothing was handed to the driver as ChannelError.
    void abandonWaiting();
    // Ends every command that waits or is in progress as ChannelError; from now on all are refused.
    void stop();

private:
    using Clock = std::chrono::steady_clock;
    using Result = Halvex::DriverErrorResult;

    // A command, cut into driver calls.
    struct Job {
        std::vector<CommandAction> calls;
        std::size_t next = 0; // the call to be made, or on its way
        CommandDone done;
    };

    struct RtuLane {
        const Channel* channel = nullptr;
        const Rtu* configured = nullptr;
        CRtu* rtu = nullptr; // null: the driver made none
        std::optional<Job> current;
        std::deque<Job> waiting;
    };

    // The driver call that is on its way.
    struct CallOnTheWay {
        std::uint64_t number = 0;
        RtuLane* lane = nullptr;
        Clock::time_point deadline;
        std::shared_ptr<std::atomic<bool>> isHeld; // by the driver
    };

    // The driver calls in a row that found the channel not connected.
    struct Refusals {
        Clock::time_point first;
        Clock::time_point last;
    };

    struct Line {
        std::vector<RtuLane*> lanes;
        std::size_t turn = 0; // the lane that is looked at first
        std::chrono::milliseconds timeLimit{0};
        std::optional<CallOnTheWay> call;
        std::optional<Refusals> refusals;
        Clock::time_point nextTry; // no call before
    };

    struct CallEnd {
        std::uint64_t number = 0;
        CommandEnd end;
    };

    // What is to be done once the lock is given up: results told, calls made.
    using Told = std::pair<CommandDone, CommandEnd>;
    struct Call {
        std::uint64_t number = 0;
        const RtuLane* lane = nullptr;
        CommandAction action;
        std::shared_ptr<std::atomic<bool>> isHeld;
    };
    struct Work {
        std::vector<Told> results;
        std::vector<Call> calls;
    };

    // What replies reach even when the dispatcher is gone.
    struct Mailbox;

    void addLines(const Site& site, const FindRtu& findRtu, const TimeLimit& timeLimit);
    std::string refusal(const Command& command) const;
    void run();
    Work collectWork();
    void takeEndedCalls(Work& work);
    void endOverdueCalls(Work& work);
    void beginCall(Line& line, Work& work);
    void endCall(Line& line, const CommandEnd& end, Work& work);
    static bool isReopening(Line& line);
    static void abandonQueue(RtuLane& lane, std::vector<Told>& results);
    void abandonAll(Work& work);
    std::optional<Clock::time_point> nextDeadline() const;
    void makeCall(const Call& call);

    const AskIfRefused isRefused;
    const CallDriver callsDriver;

    // Fixed after construction.
    std::map<std::pair<int, int>, RtuLane> lanes; // by channel and RTU
    std::map<int, Line> lines;                    // by channel

    // Its lock guards the lanes' jobs, the lines' calls and what follows.
    const std::shared_ptr<Mailbox> mailbox;
    std::uint64_t lastCall = 0;
    std::vector<Told> abandoned; // to be told
    bool stopping = false;

    std::thread thread; // last: it works on all of the above
};

} // namespace host
