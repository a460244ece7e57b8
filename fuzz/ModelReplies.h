#pragma once

#include "FuzzInput.h"

#include <HalvexDriverComponent/CReply.h>

#include <deque>
#include <optional>
#include <utility>

// The replies that the host has given along, and what each has been told. Of some the host wants to be told
// the result, of the others it lets go at any moment.
class ModelReplies {
public:
    using Result = Halvex::DriverErrorResult;

    CReply* make(CChannel* channel, bool isWaitedFor) {
        auto* const reply = new CReply(channel);
        records.push_back({reply, isWaitedFor, std::nullopt});
        Record& record = records.back();
        if (isWaitedFor)
            reply->notify([this, &record](Result result) { tell(record, result); });
        return reply;
    }

    // The place of the reply that was made last.
    int lastPlace() const { return static_cast<int>(records.size()) - 1; }
    // The driver has not taken over the reply that was made last.
    void dropLast() {
        require(!records.back().told, "nobody tells a reply that was not taken over");
        records.back().reply->release();
        records.pop_back();
    }

    void letGoOldest() {
        for (Record& record : records)
            if (!record.isWaitedFor && record.reply != nullptr)
                return std::exchange(record.reply, nullptr)->release();
    }

    bool isWaitedFor(int place) const { return records.at(static_cast<std::size_t>(place)).isWaitedFor; }
    std::optional<Result> told(int place) const { return records.at(static_cast<std::size_t>(place)).told; }
    int toldCount() const { return tellings; }

    // When the channel is gone.
    void end() {
        for (Record& record : records)
            if (record.isWaitedFor)
                require(record.told.has_value(), "who waits for a reply is told a result");
            else
                letGoOldest();
    }

private:
    struct Record {
        CReply* reply; // null when it may be gone
        bool isWaitedFor;
        std::optional<Result> told;
    };

    void tell(Record& record, Result result) {
        require(!record.told, "a reply is told once");
        record.told = result;
        record.reply = nullptr;
        ++tellings;
    }

    std::deque<Record> records; // stay in their place
    int tellings = 0;
};
