#include "WriteRefusals.h"

#include "FailureText.h"

namespace host {

WriteRefusals::WriteRefusals(const Site& site) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            if (channel.type == LineType::Serial && rtu.transmitType == TransmitType::Data)
                sources.emplace(channel.id, rtu.id);
    if (!sources.empty())
        subscription =
            CLogger::GetInstance()->watchLinesAndFrames([this](const LogLine& line) { take(line); });
}

void WriteRefusals::take(const LogLine& line) {
    const Source source{line.channelId, line.rtuId};
    if (line.route != LogLine::Route::Packet || sources.count(source) == 0)
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    std::string& bytes = answerBytes[source];
    if (line.startsEntry)
        bytes.clear();
    else if (line.packetType == Halvex::PacketType::Received && bytes.empty())
        bytes = line.text.toStdString();
}

bool WriteRefusals::isLastAnswerRefusal(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = answerBytes.find({channelId, rtuId});
    return found != answerBytes.end() && isRefusedWrite(TransmitType::Data, found->second);
}

} // namespace host
