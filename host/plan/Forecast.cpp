#include "Forecast.h"

#include "TelegramTime.h"

namespace host {

namespace {

// The driver's channel rests so long after each request that it has carried out.
constexpr double pausePerPollMs = 10;

PollForecast forecastRequest(const Channel& channel, const Rtu& rtu,
                             const std::vector<ReadTelegram>& telegrams) {
    PollForecast poll;
    poll.telegrams = telegrams.size();
    for (const ReadTelegram& telegram : telegrams) {
        const TelegramCost cost = costOf(channel, rtu, telegram);
        poll.bytes += cost.bytes();
        poll.milliseconds += cost.breakMs;
        poll.answersMs += static_cast<double>(expectedAnswerOf(channel).count());
    }
    poll.milliseconds += byteTimeOf(channel.primary, poll.bytes);
    if (poll.telegrams > 0)
        poll.milliseconds += pausePerPollMs;
    return poll;
}

double shareOf(const PollForecast& poll, std::chrono::milliseconds period) {
    return poll.total() / static_cast<double>(period.count());
}

// The second share of a poll is a request of its own.
PollForecast forecastPoll(const Channel& channel, const Rtu& rtu, const std::vector<ReadTelegram>& first,
                          const std::vector<ReadTelegram>& second) {
    PollForecast poll = forecastRequest(channel, rtu, first);
    const PollForecast more = forecastRequest(channel, rtu, second);
    poll.telegrams += more.telegrams;
    poll.bytes += more.bytes;
    poll.milliseconds += more.milliseconds;
    poll.answersMs += more.answersMs;
    return poll;
}

RtuForecast forecastRtu(const Channel& channel, const Rtu& rtu) {
    RtuForecast forecast;
    forecast.rtu = &rtu;
    forecast.plan = planReads(rtu);
    const RtuReadPlan& plan = forecast.plan;
    forecast.integrity = forecastPoll(channel, rtu, allTelegrams(plan), allTelegrams(plan.second));
    forecast.status = forecastPoll(channel, rtu, plan.status, plan.second.status);
    forecast.analog = forecastPoll(channel, rtu, plan.analog, plan.second.analog);
    forecast.share = shareOf(forecast.integrity, rtu.scan.integrity) +
                     shareOf(forecast.status, rtu.scan.status) + shareOf(forecast.analog, rtu.scan.analog);
    return forecast;
}

} // namespace

LineForecast forecastLine(const Channel& channel) {
    LineForecast line;
    line.channel = &channel;
    for (const Rtu& rtu : channel.rtus) {
        if (!rtu.enabled)
            continue;
        line.rtus.push_back(forecastRtu(channel, rtu));
        line.share += line.rtus.back().share;
    }
    return line;
}

} // namespace host
