#pragma once

// A name server that does not answer: in a program with SlowNamesPosix.cpp the system's look-up of this name
// waits until told, and then fails. Any thread.
constexpr char slowName[] = "slow.invalid";

int lookupsInProgress();
// From now on the look-up waits, or those that wait fail and others do at once.
void letLookupsWait(bool wait);
