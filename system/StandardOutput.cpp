#include "StandardOutput.h"

#include "OutputReader.h"

#include <cerrno>
#include <iostream>
#include <system_error>

namespace {

constexpr int outputLost = 1;

// Writes out what is still to be written. Empty, or why something is lost.
std::string finishOutput() {
    errno = 0;
    const bool wasGood = std::cout.good();
    std::cout.clear();
    std::cout.flush();
    if ((wasGood && std::cout.good()) || outputreader::isGone())
        return {};
    return errno == 0 ? "look whether its disk is full" : std::generic_category().message(errno);
}

} // namespace

int statusWithOutput(const std::string& program, int status) {
    const std::string fault = finishOutput();
    if (fault.empty())
        return status;
    std::cerr << program << ": standard output could not be written: " << fault << "; a part of it is lost"
              << std::endl;
    return status == 0 ? outputLost : status;
}
