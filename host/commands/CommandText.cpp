#include "CommandText.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

using Halvex::DriverErrorResult;

struct Words {
    DriverErrorResult result;
    const char* word;
    const char* text;
};

constexpr Words words[] = {
    {DriverErrorResult::Success, "success", "done"},
    {DriverErrorResult::NotSupported, "not supported", "the driver does not know this command"},
    {DriverErrorResult::BadData, "bad data", "the controller refused it, or its answer was damaged"},
    {DriverErrorResult::ChannelError, "channel error",
     "the line is not connected or has failed, or the controller did not answer"},
    {DriverErrorResult::TimeOut, "time-out", "no answer in time"},
    {DriverErrorResult::RtuNotFound, "no such RTU", "the driver does not know the RTU"},
    {DriverErrorResult::PointNotFound, "no such point", "the driver does not know the point"},
    {DriverErrorResult::UnsupportedAddress, "address not writable", "the point cannot be commanded"},
};
constexpr Words unknownResult = {DriverErrorResult::Success, "unknown result",
                                 "the driver gave a result that is not known"};

const Words& wordsOf(DriverErrorResult result) {
    const auto* const found = std::find_if(std::begin(words), std::end(words),
                                           [result](const Words& one) { return one.result == result; });
    return found == std::end(words) ? unknownResult : *found;
}

} // namespace

const char* resultWord(DriverErrorResult result) {
    return wordsOf(result).word;
}

const char* resultText(DriverErrorResult result) {
    return wordsOf(result).text;
}

} // namespace host
