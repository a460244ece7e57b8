#pragma once

#include <cstddef>

// What is different between the terminals of the systems. Main thread, but for those operations that
// say so.
namespace host::terminal {

struct Size {
    unsigned columns;
    unsigned rows;
};

bool isOutputTerminal(); // standard output
bool isErrorTerminal();  // standard error
// Of standard output; 80 by 24 when it does not say.
Size size();
// Makes standard output understand escape sequences, where that is not so anyway.
void prepare();
// A reader that goes away shall be an error of the write, not the end of the program.
void survivePipeEnd();
// Whether a screen of its own is shown, which the normal one has to take the place of at the end.
void noteScreenTaken(bool taken);
// Shows the cursor and the normal screen again, where another is shown. May be called in a signal handler.
void restoreInSignal();
// To standard output, past all that waits to be written. May be called in a signal handler.
void writeInSignal(const char* text, std::size_t length);

} // namespace host::terminal
