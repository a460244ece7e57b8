#include "FuzzedLine.h"

#include "ModelSite.h"
#include "SteppedTime.h"

#include <HalvexDriverComponent/CRtu.h>
#include <SBusChennel.h>

#include <algorithm>

using Halvex::CommTypeCode;
using Halvex::DriverErrorResult;

FuzzedLine::FuzzedLine(LineMode lineMode, FuzzInput& decisions)
    : mode(lineMode), input(decisions), controller(lineMode) {
    steppedTime::restart();
    channel = std::make_unique<SBusChennel>(static_cast<HalvexDriverCoreInterface*>(this), 1);
    auto link = std::make_unique<ModelLine>(mode, controller, input);
    line = link.get();
    line->onOpened = [this] { onOpened(); };
    line->onSend = [this] { beginRequest(); };
    line->onBusy = [this] { act(); };
    line->onShutdown = [this] { channel->SetShutdown(true); };
    channel->SetLinks(std::move(link));
    const auto type = mode == LineMode::Ethernet ? CommTypeCode::SBusEthernet : CommTypeCode::SBusSerial;
    channel->SetCommType(static_cast<int>(type));
    for (int id = 1; id <= rtuCount; ++id) {
        CPointList* const points = channel->AddRtu(modelSite::record(id, mode))->GetPointList();
        modelSite::addAnalogPoints(*points, id == 1 ? modelSite::analogCount : 1);
        if (id == 1)
            modelSite::addStatusPoints(*points);
    }
    channel->InitChannel();
}

FuzzedLine::~FuzzedLine() = default;

void FuzzedLine::run() {
    {
        const steppedTime::Sleepless sleepless([this](std::int64_t ms) { onSleep(ms); });
        channel->run();
    }
    channel->CloseChannel();
    channel.reset();
    replies.end();
}

void FuzzedLine::onSleep(std::int64_t ms) {
    steppedTime::pass(ms);
    endTurn();
    if (!channel->IsShutdown()) {
        while (!input.isEmpty() && act()) {
        }
        if (input.isEmpty())
            drain();
    }
    turnStartMs = steppedTime::nowMs();
    figuresBefore = figures();
    tellingsBefore = replies.toldCount();
    goodInTurn = 0;
}

// A channel that connects asks each RTU for its integrity poll.
void FuzzedLine::onOpened() {
    isOnline = true;
    table.queue({1, QStringLiteral("Integrity poll"), modelSite::analogTelegrams + modelSite::statusTelegrams,
                 modelSite::analogCount + modelSite::statusCount});
    table.queue({2, QStringLiteral("Integrity poll"), 1, 1});
}

void FuzzedLine::beginRequest() {
    if (hasBegun)
        return;
    hasBegun = true;
    table.queueDue(turnStartMs);
    current = table.takeNext();
}

void FuzzedLine::endTurn() {
    // A request without telegrams, or none at all.
    if (!line->hasFailedToOpen)
        beginRequest();
    const RtuStatus now = figures();
    require(now.requests - figuresBefore.requests == (current ? 1U : 0U), "a turn ends its request, once");
    const bool isAnswered = now.answers > figuresBefore.answers;
    require(now.answers + now.timeOuts + now.errors ==
                figuresBefore.answers + figuresBefore.timeOuts + figuresBefore.errors + (current ? 1U : 0U),
            "a request has one result");
    if (current)
        judge(*current, isAnswered);
    else
        require(line->exchanges.empty() && goodInTurn == 0 && replies.toldCount() == tellingsBefore,
                "nothing happens without a request");
    idleTurns = current || line->hasFailedToOpen ? 0 : idleTurns + 1;
    current.reset();
    hasBegun = false;
    line->exchanges.clear();
    line->hasFailedToOpen = false;
}

void FuzzedLine::judge(const ModelRequest& request, bool isAnswered) const {
    const std::vector<Exchange>& exchanges = line->exchanges;
    const auto telegrams = static_cast<std::size_t>(request.telegrams);
    require(exchanges.size() <= telegrams, "a request's telegrams are sent once");
    const bool isUndisturbed =
        exchanges.size() == telegrams &&
        std::all_of(exchanges.cbegin(), exchanges.cend(),
                    [](const Exchange& exchange) { return exchange.isAccepted && !exchange.isDisturbed; });
    require(isAnswered || !isUndisturbed, "what nothing disturbs succeeds");
    if (isAnswered)
        require(exchanges.size() == telegrams &&
                    std::all_of(exchanges.cbegin(), exchanges.cend(),
                                [this](const Exchange& exchange) { return mayCountAsDone(exchange); }),
                "what succeeds has been done");
    require(goodInTurn == (isAnswered ? request.points : 0), "a poll publishes all of its points, or none");
    judgeReply(request.reply, isAnswered);
}

void FuzzedLine::judgeReply(int place, bool isAnswered) const {
    const bool isTold = place >= 0 && replies.isWaitedFor(place);
    require(replies.toldCount() - tellingsBefore == (isTold ? 1 : 0),
            "who waits for the request is told, and nobody else");
    if (isTold)
        require((replies.told(place) == DriverErrorResult::Success) == isAnswered,
                "the reply tells the request's result");
}

// On a serial line the driver takes a refused write for done in Data Mode, and cannot tell an acknowledge
// from a byte of noise in Break Mode.
bool FuzzedLine::mayCountAsDone(const Exchange& exchange) const {
    return exchange.isAccepted || (mode != LineMode::Ethernet && !exchange.isRead);
}

// The input is at its end, so each telegram is answered from now on. What is left over from before can cost a
// request or the connection, which is asked for its polls again: a few turns for each.
void FuzzedLine::drain() {
    constexpr int turnsForEach = 4;
    constexpr int turnsForAPulse = 40;
    constexpr int idleTurnsAtTheEnd = 2;
    if (!turnsToDrain)
        turnsToDrain = turnsForEach * (table.size() + line->lateArrivals()) + turnsForAPulse;
    require(--*turnsToDrain >= 0, "what waits ends when the line works");
    if (table.size() == 0 && idleTurns >= idleTurnsAtTheEnd)
        channel->SetShutdown(true);
}

RtuStatus FuzzedLine::figures() const {
    RtuStatus sum;
    for (const RtuStatus& status : statuses) {
        sum.requests += status.requests;
        sum.answers += status.answers;
        sum.timeOuts += status.timeOuts;
        sum.errors += status.errors;
    }
    return sum;
}

void FuzzedLine::publishPoints(int, int rtuId, const QVector<PointUpdate>& updates) {
    for (const PointUpdate& update : updates) {
        const auto index = static_cast<std::size_t>(update.number) - 1;
        const modelSite::PointOf& point =
            update.analog ? modelSite::analogPoints[index] : modelSite::statusPoints[index];
        double& value = shown[{rtuId, update.analog, update.number}];
        if (update.quality == PointQuality::Good) {
            const std::optional<std::uint32_t> word = controller.lastSaid({rtuId, point.media, point.number});
            require(word && modelSite::valueOf(point, *word) == update.value,
                    "a good value is what the controller has said");
            value = update.value;
            ++goodInTurn;
        }
        require(value == update.value, "a bad value is the good one before it");
    }
}

void FuzzedLine::publishRtuStatus(int, int rtuId, const RtuStatus& status) {
    statuses[rtuId - 1] = status;
}
