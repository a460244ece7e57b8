#pragma once

#include <cstddef>
#include <string>

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
// Whether it understands escape sequences: by TERM, where the system has that.
bool understandsSequences();
// Unless the environment has NO_COLOR.
bool mayUseColours();

// Whether this program is the one that the terminal's user works with, rather than one in the background.
bool isForeground();
// Keys come one by one from here to endKeys(), where standard input is a terminal and the system's is known;
// and Ctrl-Z is no more than a request. endKeys() may be called in a signal handler.
void beginKeys();
void endKeys();
// What has been typed since the last call; does not wait.
std::string readKeys();
// Whether Ctrl-Z was typed since the last call.
bool takeRestRequest();
// Whether the program goes on after a rest, since the last call.
bool takeReturn();
// Rests until the user lets it go on. The terminal is left before.
void rest();

// A reader that goes away shall be an error of the write, not the end of the program.
void survivePipeEnd();
// Whether a screen of its own is shown, which the normal one has to take the place of at the end.
void noteScreenTaken(bool taken);
// Shows the cursor and the normal screen again, where another is shown, and takes keys no more. May be called
// in a signal handler.
void restoreInSignal();
// To standard output, past all that waits to be written. May be called in a signal handler.
void writeInSignal(const char* text, std::size_t length);

} // namespace host::terminal
