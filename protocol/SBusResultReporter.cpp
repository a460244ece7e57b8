#include "SBusResultReporter.h"

#include "SBusRequest.h"
#include "SBusResultCode.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverComponent/CRtu.h>

#include <algorithm>
#include <iterator>

using Halvex::DriverErrorResult;
using Halvex::LogLevel;

namespace {

struct Outcome {
    unsigned code;
    DriverErrorResult replyError;
    unsigned answers;
    unsigned timeOuts;
    unsigned errors;
    const char* text;
    LogLevel level;
};

// Code, reply error, answers, time-outs, errors, text, level. The texts are fixed, with their spelling and
// their blanks.
constexpr Outcome outcomes[] = {
    {SBusSuccess, DriverErrorResult::Success, 1, 0, 0, "Request result : Success", LogLevel::Success},
    {SBusTimeOut, DriverErrorResult::TimeOut, 0, 1, 0, "Request result : Timeout", LogLevel::RequestFailure},
    {SBusChannelError, DriverErrorResult::ChannelError, 0, 0, 1, "Request result : Chennel Error",
     LogLevel::RequestFailure},
    {SBusBadData, DriverErrorResult::BadData, 0, 0, 1, "Request result : Bad Data", LogLevel::RequestFailure},
    {SBusBadData2, DriverErrorResult::BadData, 0, 0, 1, "Request result :  Bad Data",
     LogLevel::RequestFailure},
};

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
    CLogger::GetInstance()->writeAll(rtu->chennelId(), rtu->GetRtuId(), outcome.level,
                                     QString::fromLatin1(outcome.text));
}

} // namespace

SBusResultReporter::SBusResultReporter(const CChannel* reportingChannel) : channel(reportingChannel) {}

void SBusResultReporter::report(unsigned code, const SBusRequest& request, CReply* reply) const {
    if (request.rtu == nullptr) {
        reportWithoutRtu(reply);
        return;
    }
    const auto* const outcome =
        std::find_if(std::begin(outcomes), std::end(outcomes),
                     [=](const Outcome& candidate) { return candidate.code == code; });
    if (outcome != std::end(outcomes))
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
