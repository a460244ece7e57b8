#include "ReadBoard.h"

#include <QDateTime>

#include <utility>

namespace host {

ReadBoard::ReadBoard(const Site& readSite, std::size_t elements) : site(readSite), board(elements) {}

void ReadBoard::begin() {
    const std::lock_guard<std::mutex> lock(mutex);
    board.assign(board.size(), Reading());
    elementsRead = 0;
    isReading = true;
    ends.clear();
    failedOpen = 0;
    hasNews = false;
}

void ReadBoard::finish() {
    const std::lock_guard<std::mutex> lock(mutex);
    isReading = false;
    ends.clear();
}

// A number is the point's position in its RTU; the point's id is the place of its element.
void ReadBoard::publishPoints(int, int rtuId, const QVector<PointUpdate>& updates) {
    const std::vector<Point>& points = site.channels.front().rtus[static_cast<std::size_t>(rtuId) - 1].points;
    const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
    const std::lock_guard<std::mutex> lock(mutex);
    for (const PointUpdate& one : updates) {
        if (one.quality != PointQuality::Good || one.number >= points.size())
            continue;
        Reading& reading = board[points[one.number].id];
        elementsRead += reading.isRead ? 0 : 1;
        reading = {one.value, one.stamp.isNull() ? nowMs : one.stamp.toMSecsSinceEpoch(), true};
    }
    hasNews = true;
    news.notify_all();
}

void ReadBoard::publishRtuStatus(int, int, const RtuStatus&) {}

void ReadBoard::publishChannelStatus(int, const ChannelStatus&) {}

void ReadBoard::requestEnded(const RequestEnd& end) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!isReading)
        return;
    ends.push_back(end);
    hasNews = true;
    news.notify_all();
}

void ReadBoard::lineOpened(const Channel&, bool, int result) {
    if (result == 0)
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    failedOpen = result;
    hasNews = true;
    news.notify_all();
}

void ReadBoard::waitForNews(std::chrono::milliseconds longest) {
    std::unique_lock<std::mutex> lock(mutex);
    news.wait_for(lock, longest, [this] { return hasNews; });
    hasNews = false;
}

std::vector<RequestEnd> ReadBoard::takeEnds() {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::exchange(ends, {});
}

int ReadBoard::takeFailedOpen() {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::exchange(failedOpen, 0);
}

std::vector<Reading> ReadBoard::readings() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return board;
}

std::size_t ReadBoard::readCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return elementsRead;
}

bool ReadBoard::isRead(std::size_t element) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return board[element].isRead;
}

} // namespace host
