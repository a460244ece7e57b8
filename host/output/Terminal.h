#pragma once

// What is different between the terminals of the systems. Main thread, but for the one operation that says
// so.
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
// Shows the cursor and the normal screen again. May be called in a signal handler.
void restoreInSignal();

} // namespace host::terminal
