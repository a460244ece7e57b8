#include "Program.h"

#include <DescriptorLimit.h>
#include <OutOfMemory.h>
#include <StandardDescriptors.h>
#include <StandardOutput.h>
#include <StandardTexts.h>

#include <exception>
#include <iostream>

namespace {

MADE_FIRST const outofmemory::Watch memoryWatch("sbus-sim", sim::exitUsage, nullptr);

} // namespace

int main(int argc, char** argv) {
    openClosedStandardDescriptors();
    const StandardTexts texts;
    ProgramArguments arguments(argc, argv);
    descriptors::raiseLimit();
    try {
        const int status = sim::runProgram(arguments.count(), arguments.values(), std::cout, std::cerr);
        return statusWithOutput("sbus-sim", status);
    } catch (const std::exception& failure) { // no descriptor is left
        std::cerr << "sbus-sim: " << failure.what() << std::endl;
        return sim::exitUsage;
    }
}
