#pragma once

#include "FuzzInput.h"
#include "ModelController.h"
#include "ModelLine.h"
#include "ModelReplies.h"
#include "ModelTable.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <tuple>

class CRtu;
class SBusChennel;

// One line of the plug-in's from its set-up to its end, and the host of it, which does what the input says.
// The channel's loop runs on the caller's thread: whenever it sleeps, its turn is judged and the host has its
// say. When the input is at its end the line works again, and all that waits has to end.
//
// What must hold:
// - each turn ends the request whose turn it is, once, and no other;
// - each reply is told one result: that of its request, or, when that was never carried out, a channel error
// at
//   the end of the channel;
// - a good value is what the controller's last answer has said of that element, and comes from a request that
//   succeeded; a bad one is the good one before it;
// - a request succeeds when nothing has disturbed its exchanges, and only when the controller has carried out
//   each telegram of it (as far as the line's mode lets the driver know);
// - a poll that succeeds publishes each of its points.
class FuzzedLine final : private HalvexDriverCoreInterface {
public:
    FuzzedLine(LineMode lineMode, FuzzInput& decisions);
    ~FuzzedLine() override;

    void run();

private:
    static constexpr int rtuCount = 2;

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int, const ChannelStatus&) override {}

    // Turns of the loop.
    void onSleep(std::int64_t ms);
    void onOpened();
    void beginRequest();
    void endTurn();
    void judge(const ModelRequest& request, bool isAnswered) const;
    void judgeReply(int place, bool isAnswered) const;
    bool mayCountAsDone(const Exchange& exchange) const;
    void drain();
    RtuStatus figures() const;

    // What the host does. False: nothing more until the loop's next turn is over.
    bool act();
    void poll();
    void switchOutput();
    void setPoint();
    void setPoints();
    void setClock();
    void moveElement();
    // Calls the driver, which must answer `expected`. The place of the reply that it has taken over, or
    // ModelRequest::noReply; nothing when it has taken over no request.
    using Call = std::function<int(CRtu&, CReply*)>;
    std::optional<int> give(int rtuId, Halvex::DriverErrorResult expected, bool isTakenOver,
                            const Call& call);
    Halvex::DriverErrorResult resultOfSwitch(int rtuId, unsigned point, int state) const;
    int chooseRtu() { return 1 + input.byte() % rtuCount; }
    double chooseValue();

    const LineMode mode;
    FuzzInput& input;
    ModelController controller;
    ModelTable table;
    ModelReplies replies;
    std::unique_ptr<SBusChennel> channel;
    ModelLine* line = nullptr; // the channel's

    bool isOnline = false; // once connected, the engine keeps requests while the line is opened anew
    bool hasBegun = false; // the request of this turn was taken out of the table
    std::optional<ModelRequest> current;
    std::int64_t turnStartMs = 0;
    RtuStatus figuresBefore;
    int tellingsBefore = 0;
    int goodInTurn = 0;
    int idleTurns = 0;
    std::optional<int> turnsToDrain;
    RtuStatus statuses[rtuCount];
    std::map<std::tuple<int, bool, unsigned>, double> shown; // by RTU, kind and number of a point
};
