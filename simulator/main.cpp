#include "Program.h"

#include <StandardDescriptors.h>

#include <iostream>

int main(int argc, char** argv) {
    openClosedStandardDescriptors();
    return sim::runProgram(argc, argv, std::cout, std::cerr);
}
