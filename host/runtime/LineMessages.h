#pragma once

#include "FailureCollapser.h"
#include "Messages.h"
#include "RequestEnd.h"

#include <mutex>

namespace host {

// Makes messages for people of what happens on the lines: failures, each kind of them at first at once and
// then now and again, and their ends. The messages outlive it.
class LineMessages : public LineListener {
public:
    explicit LineMessages(Messages& messagesForPeople) : messages(messagesForPeople) {}

    void requestEnded(const RequestEnd& end) override;
    void refusalsFound(const Channel& channel, const Rtu& rtu, const RefusalNews& news) override;
    void lineOpened(const Channel& channel, bool onSecondary, int result) override;

private:
    Messages& messages;

    std::mutex mutex; // guards what follows
    FailureCollapser collapser;
};

} // namespace host
