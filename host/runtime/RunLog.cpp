#include "RunLog.h"

#include "FailureText.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t mostMessages = 20'000; // for a reader that is slower than the frames

const char* const nakError = "Nak Error"; // the driver's own word for a refusal on a serial line

} // namespace

RunLog::RunLog(const Site& loggedSite, bool withFrames, RequestListener resultListener)
    : site(loggedSite), tellFrames(withFrames), listener(std::move(resultListener)),
      subscription(CLogger::GetInstance()->watchLinesAndFrames([this](const LogLine& line) { take(line); })) {
}

void RunLog::take(const LogLine& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (line.route == LogLine::Route::Packet)
        takeFrameLine(line);
    else
        takeLogLine(line);
}

void RunLog::takeFrameLine(const LogLine& line) {
    const Source source{line.channelId, line.rtuId};
    if (line.packetType == Halvex::PacketType::ProtocolError)
        protocolErrors[source] = line.text.toStdString();
    else if (line.packetType == Halvex::PacketType::Sent)
        protocolErrors[source].clear(); // silence that follows is no refusal
    noteAnswerBytes(line);
    if (listener)
        noteSentBytes(line);
    if (!tellFrames)
        return;
    const std::string who = std::to_string(line.channelId) + "/" + std::to_string(line.rtuId);
    tell(line.startsEntry ? who + " " + line.text.trimmed().toStdString()
                          : std::string(who.size() + 1, ' ') + line.text.trimmed().toStdString());
}

void RunLog::noteAnswerBytes(const LogLine& line) {
    const Source source{line.channelId, line.rtuId};
    if (line.startsEntry)
        answerBytes[source].clear();
    else if (line.packetType == Halvex::PacketType::Received && answerBytes[source].empty())
        answerBytes[source] = line.text.toStdString();
}

void RunLog::noteSentBytes(const LogLine& line) {
    if (line.packetType != Halvex::PacketType::Sent)
        return;
    std::string& bytes = sentBytes[{line.channelId, line.rtuId}];
    if (line.startsEntry)
        bytes.clear();
    else
        bytes += line.text.toStdString();
}

// The driver tells a refused read as such only where the negative acknowledge is as long as the answer; a
// refused write it takes for done in Data Mode, and for a damaged answer in Break Mode.
void RunLog::noteHiddenRefusal(const LogLine& line, const Channel& channel, const Rtu* rtu) {
    if (rtu == nullptr || channel.type != LineType::Serial)
        return;
    const Source source{line.channelId, line.rtuId};
    std::string& protocolError = protocolErrors[source];
    const bool isNegative = isRefusedRead(rtu->transmitType, answerBytes[source]);
    if (line.text.contains(QStringLiteral("Timeout")))
        protocolError = isNegative ? nakError : "";
    else if ((isNegative && protocolError == "Control Error") ||
             (line.level == Halvex::LogLevel::Success &&
              isRefusedWrite(rtu->transmitType, answerBytes[source])))
        protocolError = nakError;
}

void RunLog::noteSilence(const LogLine& line) {
    const Source source{line.channelId, line.rtuId};
    const bool withoutAnswer =
        line.text.contains(QStringLiteral("Timeout")) && !isRefusal(protocolErrors[source]);
    if (withoutAnswer || line.text.contains(QStringLiteral("Chennel Error")))
        silent.insert(source);
    else
        silent.erase(source);
}

void RunLog::noteEndInUse(const LogLine& line) {
    if (line.rtuId != 0 || line.level != Halvex::LogLevel::Success)
        return;
    if (line.text.startsWith(QStringLiteral("Secondary")))
        onSecondary.insert(line.channelId);
    else
        onSecondary.erase(line.channelId);
}

void RunLog::noteRefusal(const LogLine& line) {
    const Source source{line.channelId, line.rtuId};
    refusedLast.erase(source);
    if (!isFailure(line))
        return;
    refused.erase(source);
    const bool isChannelError = line.text.contains(QStringLiteral("Chennel Error"));
    if (isChannelError || !isRefusal(protocolErrors[source]))
        return;
    refused.insert(source);
    refusedLast.insert(source);
}

void RunLog::takeLogLine(const LogLine& line) {
    const Source source{line.channelId, line.rtuId};
    const Channel* const channel = findChannel(line.channelId);
    if (channel == nullptr)
        return;
    const Rtu* const rtu = findRtu(line.channelId, line.rtuId);
    noteHiddenRefusal(line, *channel, rtu);
    noteEndInUse(line);
    noteSilence(line);
    noteRefusal(line);
    if (listener)
        tellListener(line, *channel, rtu);
    const std::optional<std::string> message =
        isFailure(line)
            ? collapser.failed(source, nameOf(*channel, rtu) + ": " + reasonOf(line, *channel, rtu),
                               std::chrono::steady_clock::now())
            : collapser.succeeded(source, nameOf(*channel, rtu));
    if (message)
        tell(*message);
    // What the next request leaves unsaid must not be taken from this one.
    protocolErrors.erase(source);
    answerBytes.erase(source);
    sentBytes.erase(source);
}

// A write that was refused in Data Mode is a success in the driver's log.
bool RunLog::isFailure(const LogLine& line) const {
    if (line.level != Halvex::LogLevel::Success)
        return true;
    const auto error = protocolErrors.find({line.channelId, line.rtuId});
    return error != protocolErrors.end() && isRefusal(error->second);
}

std::string RunLog::reasonOf(const LogLine& line, const Channel& channel, const Rtu* rtu) const {
    const auto error = protocolErrors.find({line.channelId, line.rtuId});
    const std::string protocolError = error == protocolErrors.end() ? "" : error->second;
    const std::string text =
        line.level == Halvex::LogLevel::Success ? "Request result : Bad Data" : line.text.toStdString();
    return failureReason(channel, rtu, text, protocolError, onSecondary.count(line.channelId) > 0);
}

RequestResult::Kind RunLog::kindOf(const LogLine& line) const {
    using Kind = RequestResult::Kind;
    const Source source{line.channelId, line.rtuId};
    if (!isFailure(line))
        return Kind::Answered;
    if (silent.count(source) > 0)
        return Kind::NoAnswer;
    return refused.count(source) > 0 ? Kind::Refused : Kind::BadAnswer;
}

void RunLog::tellListener(const LogLine& line, const Channel& channel, const Rtu* rtu) const {
    using Kind = RequestResult::Kind;
    if (rtu == nullptr && line.level != Halvex::LogLevel::LinkFailure)
        return;
    const Source source{line.channelId, line.rtuId};
    const auto find = [&source](const std::map<Source, std::string>& texts) {
        const auto found = texts.find(source);
        return found == texts.end() ? std::string() : found->second;
    };
    const Kind kind = rtu == nullptr ? Kind::LineClosed : kindOf(line);
    listener({line.channelId, line.rtuId, kind,
              kind == Kind::Answered ? std::string() : reasonOf(line, channel, rtu), find(protocolErrors),
              find(sentBytes)});
}

void RunLog::tell(const std::string& message) {
    if (messages.size() < mostMessages)
        messages.push_back(message);
    else
        ++lostMessages;
}

void RunLog::addMessage(const std::string& message) {
    const std::lock_guard<std::mutex> lock(mutex);
    tell(message);
}

std::vector<std::string> RunLog::takeMessages() {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<std::string> taken;
    taken.swap(messages);
    if (lostMessages > 0)
        taken.push_back(std::to_string(lostMessages) +
                        " messages were lost: they came faster than they were read");
    lostMessages = 0;
    return taken;
}

bool RunLog::wasRefused(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return refused.count({channelId, rtuId}) > 0;
}

bool RunLog::wasLastRequestRefused(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return refusedLast.count({channelId, rtuId}) > 0;
}

bool RunLog::isSilent(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return silent.count({channelId, rtuId}) > 0;
}

const Channel* RunLog::findChannel(int channelId) const {
    const auto found = std::find_if(site.channels.begin(), site.channels.end(),
                                    [channelId](const Channel& channel) { return channel.id == channelId; });
    return found == site.channels.end() ? nullptr : &*found;
}

const Rtu* RunLog::findRtu(int channelId, int rtuId) const {
    const Channel* const channel = findChannel(channelId);
    if (channel == nullptr)
        return nullptr;
    const auto found = std::find_if(channel->rtus.begin(), channel->rtus.end(),
                                    [rtuId](const Rtu& rtu) { return rtu.id == rtuId; });
    return found == channel->rtus.end() ? nullptr : &*found;
}

} // namespace host
