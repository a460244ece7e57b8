#pragma once

#include "ScriptedLink.h"

#include <chrono>
#include <thread>

// A link whose round trips a test makes.
class AnsweringLink : public ScriptedLink {
public:
    void exchange(std::chrono::milliseconds answerTime) {
        noteSent("?", 1, Clock::now());
        std::this_thread::sleep_for(answerTime);
        noteReceived("!", 1);
    }
};
