#pragma once

#include <string>
#include <vector>

// What comes in and goes out as text is UTF-8 on every system, and the same bytes: a line ends with a line
// feed alone.

// Lets consoles show what the program writes as UTF-8, for as long as this lives. One in each program, from
// the start of main on.
class StandardTexts {
public:
    StandardTexts();
    StandardTexts(const StandardTexts&) = delete;
    StandardTexts& operator=(const StandardTexts&) = delete;
    ~StandardTexts(); // NOLINT(performance-trivially-destructible): on Windows there is something to undo

private:
    [[maybe_unused]] unsigned codePageBefore = 0; // where there is such a thing
};

// The command line, which main's own arguments are a translation of on some systems. In the form of main's
// arguments, for as long as this lives.
class ProgramArguments {
public:
    ProgramArguments(int count, char** values);
    ProgramArguments(const ProgramArguments&) = delete;
    ProgramArguments& operator=(const ProgramArguments&) = delete;

    int& count() { return number; }
    char** values() { return pointers.data(); }

private:
    std::vector<std::string> texts;
    std::vector<char*> pointers; // ends with a null
    int number = 0;
};
