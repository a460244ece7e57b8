#include "SBusResultReporter.h"

#include "SBusPublishingRtu.h"
#include "SBusRequest.h"
#include "SBusResultCode.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverComponent/CReply.h>

#include <QString>

#include <array>

using Halvex::DriverErrorResult;
using Halvex::LogLevel;

namespace {

struct Outcome {
    unsigned code;
    DriverErrorResult replyError;
    unsigned answers;
    unsigned timeOuts;
    unsigned errors;
    QString text;
    LogLevel level;
};

// Null for a code without one. The texts are fixed, with their spelling and their blanks; they have memory of
// their own, since a host may keep a log line longer than it keeps the plug-in.
const Outcome* outcomeOf(unsigned code) {
    static const std::array<Outcome, 5> outcomes{{
        // code, reply error, answers, time-outs, errors, text, level
        {SBusSuccess, DriverErrorResult::Success, 1, 0, 0, QLatin1String("Request result : Success"),
         LogLevel::Success},
        {SBusTimeOut, DriverErrorResult::TimeOut, 0, 1, 0, QLatin1String("Request result : Timeout"),
         LogLevel::RequestFailure},
        {SBusChannelError, DriverErrorResult::ChannelError, 0, 0, 1,
         QLatin1String("Request result : Chennel Error"), LogLevel::RequestFailure},
        {SBusBadData, DriverErrorResult::BadData, 0, 0, 1, QLatin1String("Request result : Bad Data"),
         LogLevel::RequestFailure},
        {SBusBadData2, DriverErrorResult::BadData, 0, 0, 1, QLatin1String("Request result :  Bad Data"),
         LogLevel::RequestFailure},
    }};
    for (const Outcome& outcome : outcomes)
        if (outcome.code == code)
            return &outcome;
    return nullptr;
}

// The driver's use of the reply ends here.
void endReply(CReply* reply, DriverErrorResult result) {
    if (reply->replyed())
        delete reply;
    else
        reply->setRefer(result);
}

void reportOutcome(const Outcome& outcome, CRtu* rtu, CReply* reply) {
    if (reply != nullptr && outcome.code != SBusSuccess)
        reply->errorResult = outcome.replyError;
    rtu->PutRtuStatus(rtu->IsConnect(), rtu->IsConnect(), 0, outcome.answers, outcome.timeOuts,
                      outcome.errors);
    CLogger::GetInstance()->writeAll(rtu->chennelId(), rtu->GetRtuId(), outcome.level, outcome.text);
}

} // namespace

SBusResultReporter::SBusResultReporter(const CChannel* reportingChannel) : channel(reportingChannel) {}

void SBusResultReporter::report(unsigned code, const SBusRequest& request, CReply* reply) const {
    if (request.rtu == nullptr) {
        reportWithoutRtu(reply);
        return;
    }
    if (const Outcome* const outcome = outcomeOf(code))
        reportOutcome(*outcome, request.rtu, reply);
    request.rtu->GetChannel()->PutChannelStatus();
    // With Success the reply tells the error that it holds, if it holds one.
    if (reply != nullptr)
        endReply(reply, DriverErrorResult::Success);
}

void SBusResultReporter::reportWithoutRtu(CReply* reply) const {
    if (reply != nullptr)
        endReply(reply, DriverErrorResult::RtuNotFound);
    CLogger::GetInstance()->writeFile(channel != nullptr ? channel->channelId() : 0, 0,
                                      LogLevel::CommandFailure,
                                      QStringLiteral("Request callback failed (RTU handle is not found)"));
}
