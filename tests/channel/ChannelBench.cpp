#include "ChannelBench.h"

#include "Telegram.h"

#include <QThread>

#include <algorithm>
#include <thread>

namespace {

constexpr auto patience = std::chrono::seconds(30);

// A register answer of zeros to an Ethernet read telegram.
QByteArray answerTo(const QByteArray& telegram) {
    const int elements = static_cast<unsigned char>(telegram[11]) + 1;
    QByteArray answer(3, '\0');
    answer += static_cast<char>(9 + 4 * elements + 2);
    answer += QByteArray("\x01\x00", 2) + telegram.mid(6, 2) + '\x01' + QByteArray(4 * elements, '\0');
    sbus::appendChecksum(answer);
    return answer;
}

} // namespace

void ControllerLink::failOpens(int count) {
    const std::lock_guard lock(mutex);
    failingOpens = count;
}

void ControllerLink::keepSilent() {
    const std::lock_guard lock(mutex);
    silent = true;
}

bool ControllerLink::waitForOpens(int count) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, patience, [&] { return static_cast<int>(opened.size()) >= count; });
}

bool ControllerLink::waitForTelegrams(int count) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, patience, [&] { return sent.size() >= count; });
}

int ControllerLink::resetCount() const {
    const std::lock_guard lock(mutex);
    return resets;
}

int ControllerLink::openCount() const {
    const std::lock_guard lock(mutex);
    return static_cast<int>(opened.size());
}

int ControllerLink::closeCount() const {
    const std::lock_guard lock(mutex);
    return closes;
}

QList<QByteArray> ControllerLink::telegrams() const {
    const std::lock_guard lock(mutex);
    return sent;
}

std::vector<std::chrono::steady_clock::time_point> ControllerLink::openTimes() const {
    const std::lock_guard lock(mutex);
    return opened;
}

std::vector<std::chrono::steady_clock::time_point> ControllerLink::sendTimes() const {
    const std::lock_guard lock(mutex);
    return sentAt;
}

void ControllerLink::reset() {
    const std::lock_guard lock(mutex);
    ++resets;
}

int ControllerLink::open() {
    const std::lock_guard lock(mutex);
    opened.push_back(std::chrono::steady_clock::now());
    changed.notify_all();
    if (failingOpens == 0)
        return 0;
    --failingOpens;
    return 111; // any error number
}

void ControllerLink::close() {
    const std::lock_guard lock(mutex);
    ++closes;
}

int ControllerLink::send(const char* data, int length, int) {
    const std::lock_guard lock(mutex);
    sent << QByteArray(data, length);
    sentAt.push_back(std::chrono::steady_clock::now());
    answer = silent || length < 16 ? QByteArray() : answerTo(sent.last());
    changed.notify_all();
    return 0;
}

int ControllerLink::receive(char* buffer, int capacity, int& received, int timeoutMs) {
    std::unique_lock lock(mutex);
    if (answer.isEmpty()) {
        lock.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(timeoutMs));
        received = 0;
        return 0;
    }
    received = std::min(capacity, answer.size());
    std::copy_n(answer.cbegin(), received, buffer);
    answer.clear();
    return 0;
}

ChannelBench::~ChannelBench() {
    if (channel)
        stop();
}

ControllerLink* ChannelBench::setLink() {
    auto link = std::make_unique<ControllerLink>();
    ControllerLink* const kept = link.get();
    channel->SetLinks(std::move(link));
    return kept;
}

RemoteTerminalUnit ChannelBench::record(int id, int station) {
    RemoteTerminalUnit info;
    info.id = id;
    info.scan.stationAddress = QString::number(station);
    info.sessionTimeOutMs = 20;
    info.periods = {0, 0, 0}; // nothing but the channel itself asks for polls
    return info;
}

CRtu* ChannelBench::addRtu(int id, int station) {
    return channel->AddRtu(record(id, station));
}

CRtu* ChannelBench::addPollingRtu(int id, int station) {
    CRtu* const rtu = addRtu(id, station);
    addRegister(rtu, "R10");
    return rtu;
}

void ChannelBench::addRegister(CRtu* rtu, const char* address) {
    AnalogPoint point;
    point.number = 1;
    point.address = QString::fromLatin1(address);
    rtu->GetPointList()->AddAnalogPoint(point);
}

void ChannelBench::startWith(int commType) {
    channel->SetCommType(commType);
    EXPECT_TRUE(channel->InitChannel());
    channel->start();
}

void ChannelBench::stop() {
    channel->SetShutdown(true);
    EXPECT_TRUE(channel->wait(30'000));
}

bool ChannelBench::waitUntil(const std::function<bool()>& reached) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!reached()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        QThread::msleep(2);
    }
    return true;
}

QStringList ChannelBench::linesAt(Halvex::LogLevel level) const {
    QStringList texts;
    for (const LogLine& line : log.lines())
        if (line.route == LogLine::Route::All && line.channelId == channelId && line.rtuId == 0 &&
            line.level == level)
            texts << line.text;
    return texts;
}
