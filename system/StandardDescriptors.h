#pragma once

// Opens those of standard input, output and error that are closed on the null device. Otherwise the next
// file, socket or line that the program opens takes the number of one of them, and what it prints goes there.
// To be called first of all in main.
void openClosedStandardDescriptors();
