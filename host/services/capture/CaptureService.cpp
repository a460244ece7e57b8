#include "CaptureService.h"

#include "CapturedDatagrams.h"
#include "runtime/StartThread.h"

#include <condition_variable>
#include <mutex>
#include <utility>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

std::size_t sizeOf(const Exchange& exchange) {
    return sizeof exchange + exchange.sent.size() + exchange.received.size() + exchange.discarded.size();
}

} // namespace

// The queue and what its thread does.
class CaptureService::Writer {
public:
    Writer(const CaptureOptions& captureOptions, const Settings& serviceSettings)
        : options(captureOptions), settings(serviceSettings), file(captureOptions, serviceSettings.open) {}

    std::string begin(Messages& target);
    void add(const Exchange& exchange);
    void writeUntilEnded();
    void end();
    std::vector<ServiceFigure> figures() const;

private:
    // What became of a batch.
    struct Written {
        std::size_t frames = 0;
        std::size_t lost = 0;
        std::string news; // empty: none
    };

    Written write(const std::vector<Exchange>& batch);
    std::string noteLoss(std::size_t frameCount);
    std::string noteSuccess();
    void tell(const std::string& text); // with the mutex held

    const CaptureOptions options;
    const Settings settings;

    // The writing thread's alone once that runs.
    CaptureFile file;
    CapturedDatagrams datagrams;
    Clock::time_point nextTry{};
    std::uint64_t lostToRefusal = 0; // since the disk took all that came

    mutable std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::vector<Exchange> waiting;
    std::size_t waitingBytes = 0;
    bool isOverflowing = false;
    bool isEnding = false;
    bool hasEnded = false;        // the thread
    Messages* messages = nullptr; // none: nobody is to be told any more
    std::uint64_t frames = 0;
    std::uint64_t lost = 0;
};

std::string CaptureService::Writer::begin(Messages& target) {
    messages = &target;
    return file.begin();
}

// On the lines' threads.
void CaptureService::Writer::add(const Exchange& exchange) {
    Exchange copy = exchange;
    const std::lock_guard<std::mutex> lock(mutex);
    if (waitingBytes + sizeOf(copy) > settings.queuedBytes) {
        lost += countDatagrams(copy);
        if (!std::exchange(isOverflowing, true))
            tell("more frames come than the disk takes; some are lost");
        return;
    }
    waitingBytes += sizeOf(copy);
    waiting.push_back(std::move(copy));
    changed.notify_all();
}

void CaptureService::Writer::writeUntilEnded() {
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        isOverflowing = isOverflowing && !waiting.empty();
        changed.wait(lock, [this] { return isEnding || !waiting.empty(); });
        if (waiting.empty())
            break;
        std::vector<Exchange> batch;
        batch.swap(waiting);
        waitingBytes = 0;
        lock.unlock();
        const Written written = write(batch);
        lock.lock();
        frames += written.frames;
        lost += written.lost;
        if (!written.news.empty())
            tell(written.news);
    }
    hasEnded = true;
    changed.notify_all();
}

CaptureService::Writer::Written CaptureService::Writer::write(const std::vector<Exchange>& batch) {
    std::vector<TelegramBytes> records;
    for (const Exchange& exchange : batch)
        for (const Datagram& datagram : datagrams.make(exchange))
            records.push_back(pcapRecord(datagram));
    Written written;
    if (Clock::now() >= nextTry) {
        written.frames = file.write(records);
        if (written.frames < records.size())
            nextTry = Clock::now() + settings.pauseAfterRefusal;
    }
    written.lost = records.size() - written.frames;
    written.news = written.lost > 0 ? noteLoss(written.lost) : noteSuccess();
    return written;
}

// What is to be told of it.
std::string CaptureService::Writer::noteLoss(std::size_t frameCount) {
    const bool isTold = lostToRefusal > 0;
    lostToRefusal += frameCount;
    return isTold ? ""
                  : "the disk refuses frames" + (file.refusal().empty() ? "" : ": " + file.refusal()) +
                        "; they are lost until it takes them again";
}

std::string CaptureService::Writer::noteSuccess() {
    const std::uint64_t before = std::exchange(lostToRefusal, 0);
    return before == 0 ? ""
                       : "the disk takes frames again; " + std::to_string(before) +
                             (before == 1 ? " was lost" : " were lost");
}

void CaptureService::Writer::tell(const std::string& text) {
    if (messages != nullptr)
        messages->tell("capture " + options.path + ": " + text, Severity::Warning);
}

void CaptureService::Writer::end() {
    std::unique_lock<std::mutex> lock(mutex);
    isEnding = true;
    changed.notify_all();
    changed.wait_for(lock, settings.patienceAtEnd, [this] { return hasEnded; });
    messages = nullptr;
    for (const Exchange& exchange : waiting)
        lost += countDatagrams(exchange);
    waiting.clear();
}

std::vector<ServiceFigure> CaptureService::Writer::figures() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return {{"frames", frames}, {"lost", lost}};
}

CaptureService::CaptureService(const CaptureOptions& captureOptions)
    : CaptureService(captureOptions, Settings()) {}

CaptureService::CaptureService(const CaptureOptions& captureOptions, const Settings& serviceSettings)
    : writer(std::make_shared<Writer>(captureOptions, serviceSettings)) {}

CaptureService::~CaptureService() {
    CaptureService::stop();
}

std::string CaptureService::start(RunningSite& runningSite) {
    std::string fault = begin(runningSite.messages);
    if (fault.empty())
        watch = follow(runningSite.exchanges);
    return fault;
}

std::string CaptureService::begin(Messages& messages) {
    std::string fault = writer->begin(messages);
    if (!fault.empty())
        return fault;
    startThread("the capture", [shared = writer] { shared->writeUntilEnded(); }).detach();
    hasBegun = true;
    return {};
}

std::unique_ptr<ExchangeFeed::Watch> CaptureService::follow(ExchangeFeed& feed) const {
    return feed.watch([target = writer.get()](const Exchange& exchange) { target->add(exchange); });
}

void CaptureService::stop() {
    watch.reset();
    if (std::exchange(hasBegun, false))
        writer->end();
}

std::vector<ServiceFigure> CaptureService::figures() const {
    return writer->figures();
}

} // namespace host
