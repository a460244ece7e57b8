#pragma once

#include "FailureCollapser.h"
#include "site/Site.h"

#include <HalvexDriverComponent/CLogger.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

namespace host {

// How one request of an RTU ended, or (RTU 0) that its line could not be opened.
struct RequestResult {
    enum class Kind { Answered, Refused, NoAnswer, BadAnswer, LineClosed };

    int channelId = 0;
    int rtuId = 0;
    Kind kind = Kind::Answered;
    std::string reason;        // what happened and what to check; empty when it was answered
    std::string protocolError; // the driver's own word for it, if it has one
    std::string sentHex;       // the request's last telegram
};
using RequestListener = std::function<void(const RequestResult&)>;

// Follows the log of a running site: makes messages of its failures, frames of its trace if they are wanted,
// and remembers how the last requests of each RTU failed. Lines arrive on the channels' threads; the
// rest is for any thread. The site outlives it.
class RunLog {
public:
    // `resultListener` is told on the channels' threads; it must return soon and not call back.
    RunLog(const Site& loggedSite, bool withFrames, RequestListener resultListener = {});

    // Adds a message of somebody else's.
    void addMessage(const std::string& message);
    // What is to be told since the last call.
    std::vector<std::string> takeMessages();
    // Whether the last request of an RTU that failed was refused by the controller. Answers to other requests
    // do not change that: one kind of poll may be refused for ever while the others are answered.
    bool wasRefused(int channelId, int rtuId) const;
    // Whether the very last request of an RTU was refused, also where the driver takes it for done: in Data
    // Mode it looks at the start and the checksum of an acknowledge alone. Asked on the channel's thread when
    // a request has just ended, it is that one.
    bool wasLastRequestRefused(int channelId, int rtuId) const;
    // Whether the last request of an RTU found no answer. The RTU's own connected flag does not tell: each
    // time the line is opened anew it is set before anything has answered.
    bool isSilent(int channelId, int rtuId) const;

private:
    using Source = FailureCollapser::Source;

    void take(const LogLine& line);
    void takeFrameLine(const LogLine& line);
    void noteAnswerBytes(const LogLine& line);
    void noteSentBytes(const LogLine& line);
    void noteHiddenRefusal(const LogLine& line, const Channel& channel, const Rtu* rtu);
    void takeLogLine(const LogLine& line);
    void tellListener(const LogLine& line, const Channel& channel, const Rtu* rtu) const;
    RequestResult::Kind kindOf(const LogLine& line) const;
    bool isFailure(const LogLine& line) const;
    std::string reasonOf(const LogLine& line, const Channel& channel, const Rtu* rtu) const;
    void noteSilence(const LogLine& line);
    void noteEndInUse(const LogLine& line);
    void noteRefusal(const LogLine& line);
    void tell(const std::string& message);
    const Channel* findChannel(int channelId) const;
    const Rtu* findRtu(int channelId, int rtuId) const;

    const Site& site;
    const bool tellFrames;
    const RequestListener listener; // may be empty

    mutable std::mutex mutex; // guards what follows
    FailureCollapser collapser;
    std::map<Source, std::string> protocolErrors; // of the last telegram; empty when it had none
    std::map<Source, std::string> answerBytes;    // the first line of the last answer's hex dump
    std::map<Source, std::string> sentBytes;      // the hex dump of the last telegram sent
    std::set<Source> silent;
    std::set<Source> refused;     // whose last failure was a refusal
    std::set<Source> refusedLast; // whose last request was refused
    std::set<int> onSecondary;    // channels whose secondary end connected last
    std::vector<std::string> messages;
    std::size_t lostMessages = 0;

    std::unique_ptr<CLogger::Subscription> subscription; // last: no line comes before or after the rest lives
};

} // namespace host
