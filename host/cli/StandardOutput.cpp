#include "StandardOutput.h"

#include "runtime/ExitStatus.h"
#include "services/console/OutputReader.h"

#include <cerrno>
#include <iostream>
#include <system_error>

namespace host {

std::string finishOutput() {
    errno = 0;
    const bool wasGood = std::cout.good();
    std::cout.clear();
    std::cout.flush();
    if ((wasGood && std::cout.good()) || outputreader::isGone())
        return {};
    return errno == 0 ? "look whether its disk is full" : std::generic_category().message(errno);
}

int statusWithOutput(int status) {
    const std::string fault = finishOutput();
    if (fault.empty())
        return status;
    std::cerr << "sbus-host: standard output could not be written: " << fault << "; a part of it is lost"
              << std::endl;
    return status == 0 ? static_cast<int>(ExitStatus::CommunicationFailed) : status;
}

} // namespace host
