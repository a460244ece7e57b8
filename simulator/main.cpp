#include "Program.h"

#include <DescriptorLimit.h>
#include <OutOfMemory.h>
#include <StandardDescriptors.h>
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
        return sim::runProgram(arguments.count(), arguments.values(), std::cout, std::cerr);
    } catch (const std::exception& failure) { // no descriptor is left
        std::cerr << "sbus-sim: " << failure.what() << std::endl;
        return sim::exitUsage;
    }
}
