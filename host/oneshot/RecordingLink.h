#pragma once

#include "site/Site.h"
#include "telegram/Exchange.h"

#include <HalvexDriverLink/CLink.h>

#include <mutex>

namespace host {

// The telegrams that were handed to a line. Any thread.
class TelegramRecord {
public:
    void add(const TelegramBytes& telegram);
    // Those since the last call.
    std::vector<TelegramBytes> take();

private:
    std::mutex mutex;
    std::vector<TelegramBytes> telegrams;
};

// A line that leads nowhere: always opens, takes every telegram into the record, answers none. The record
// outlives it. Threads as of any link.
class RecordingLink : public CLink {
public:
    RecordingLink(LineType type, TelegramRecord& telegramRecord);

    void reset() override;
    int open() override;
    void close() override {}
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return linkKind; }

protected:
    void wake() override {}

private:
    const int linkKind;
    TelegramRecord& record;
};

} // namespace host
