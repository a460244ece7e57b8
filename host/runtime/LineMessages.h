#pragma once

#include "FailureCollapser.h"
#include "Messages.h"
#include "RequestEnd.h"

#include <map>
#include <mutex>

namespace host {

// Makes messages for people of what happens on the lines: failures, each kind of them at first at once and
// then now and again, and their ends; and which end of a redundant line is used. The messages outlive it.
class LineMessages : public LineListener {
public:
    explicit LineMessages(Messages& messagesForPeople) : messages(messagesForPeople) {}

    void requestEnded(const RequestEnd& end) override;
    void refusalsFound(const Channel& channel, const Rtu& rtu, const RefusalNews& news) override;
    void lineOpened(const Channel& channel, bool onSecondary, int result) override;

private:
    std::optional<std::string> openText(const Channel& channel, bool onSecondary, int result);
    void tellEndInUse(const Channel& channel, bool onSecondary, bool hasAnswered);

    Messages& messages;

    std::mutex mutex; // guards what follows
    FailureCollapser collapser;
    std::map<int, bool> toldSecondary; // by channel: whether the end in use that was told last is that one
};

} // namespace host
