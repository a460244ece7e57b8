#include "RunLog.h"

#include "FailureText.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t mostMessages = 20'000; // for a reader that is slower than the frames

} // namespace

RunLog::RunLog(const Site& loggedSite, bool withFrames)
    : site(loggedSite), tellFrames(withFrames),
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

// The driver tells a refusal as such only where the negative acknowledge is as long as the answer.
void RunLog::noteHiddenRefusal(const LogLine& line, const Channel& channel, const Rtu* rtu) {
    if (rtu == nullptr || channel.type != LineType::Serial || !line.text.contains(QStringLiteral("Timeout")))
        return;
    const Source source{line.channelId, line.rtuId};
    const bool isRefused = isRefusedRead(rtu->transmitType, answerBytes[source]);
    protocolErrors[source] = isRefused ? "Nak Error" : "";
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
    if (line.level == Halvex::LogLevel::Success)
        return;
    const bool isChannelError = line.text.contains(QStringLiteral("Chennel Error"));
    if (!isChannelError && isRefusal(protocolErrors[source]))
        refused.insert(source);
    else
        refused.erase(source);
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
    std::optional<std::string> message;
    if (line.level == Halvex::LogLevel::Success)
        message = collapser.succeeded(source, nameOf(*channel, rtu));
    else
        message = collapser.failed(source,
                                   failureText(*channel, rtu, line.text.toStdString(), protocolErrors[source],
                                               onSecondary.count(line.channelId) > 0),
                                   std::chrono::steady_clock::now());
    if (message)
        tell(*message);
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
