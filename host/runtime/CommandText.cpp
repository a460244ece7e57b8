#include "CommandText.h"

namespace host {

const char* resultText(Halvex::DriverErrorResult result) {
    using Halvex::DriverErrorResult;
    switch (result) {
    case DriverErrorResult::Success:
        return "done";
    case DriverErrorResult::NotSupported:
        return "the driver does not know this command";
    case DriverErrorResult::BadData:
        return "the controller refused it, or its answer was damaged";
    case DriverErrorResult::ChannelError:
        return "the line is not connected or has failed, or the controller did not answer";
    case DriverErrorResult::TimeOut:
        return "no answer in time";
    case DriverErrorResult::RtuNotFound:
        return "the driver does not know the RTU";
    case DriverErrorResult::PointNotFound:
        return "the driver does not know the point";
    case DriverErrorResult::UnsupportedAddress:
        return "the point cannot be commanded";
    }
    return "the driver gave a result that is not known";
}

} // namespace host
