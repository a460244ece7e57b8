#include "StandardTexts.h"

StandardTexts::StandardTexts() = default;

StandardTexts::~StandardTexts() = default;

ProgramArguments::ProgramArguments(int count, char** values)
    : pointers(values, values + count + 1), number(count) {}
