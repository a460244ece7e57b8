#include "Program.h"

#include <iostream>

int main(int argc, char** argv) {
    return sim::runProgram(argc, argv, std::cout, std::cerr);
}
