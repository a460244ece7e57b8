#pragma once

#include "runtime/RequestEnd.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace host {

// What reading one element has given.
struct Reading {
    double value = 0;
    qint64 timeMs = 0; // since 1970
    bool isRead = false;
};

// Where the values and the results of one reading arrive, by the places of its elements. A value that has
// been read stays so until begin(): that its RTU asks once more, or its line breaks off behind it, takes
// nothing back. Any thread.
class ReadBoard : public HalvexDriverCoreInterface, public LineListener {
public:
    // A site of makeReadSite, which outlives it.
    ReadBoard(const Site& readSite, std::size_t elements);

    // A new reading: nothing is read yet, and no result is there. The first one has begun with the board.
    void begin();
    // The reading is over. Until the next one begins, nobody takes the ends of requests, which the driver
    // goes on with for as long as a controller is silent: they are not kept.
    void finish();

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int channelId, const ChannelStatus& status) override;
    void requestEnded(const RequestEnd& end) override;
    void lineOpened(const Channel& channel, bool onSecondary, int result) override;

    // Waits until something new is there, at most so long.
    void waitForNews(std::chrono::milliseconds longest);
    // The requests that have ended since the last call.
    std::vector<RequestEnd> takeEnds();
    // The system's error number, when the line could not be opened since the last call; else 0.
    int takeFailedOpen();
    std::vector<Reading> readings() const;
    std::size_t readCount() const;
    bool isRead(std::size_t element) const;

private:
    const Site& site;

    mutable std::mutex mutex; // guards what follows
    std::condition_variable news;
    bool hasNews = false;
    std::vector<Reading> board;
    std::size_t elementsRead = 0;
    bool isReading = true;
    std::vector<RequestEnd> ends;
    int failedOpen = 0;
};

} // namespace host
