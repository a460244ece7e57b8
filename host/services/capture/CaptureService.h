#pragma once

#include "CaptureFile.h"
#include "services/RunningSite.h"
#include "services/Service.h"

#include <chrono>

namespace host {

// Captures every exchange of the lines into a file for Wireshark (CapturedDatagrams.h, CaptureFile.h).
//
// The lines' threads put copies of their exchanges into a queue, a thread of its own writes them. What comes
// while the queue is full is lost, and so is what the disk refuses, which is tried again after a while. Both
// are counted, and told when it begins; a disk that works again is told, too.
//
// Figures: "frames" are the datagrams in the file, "lost" those that are not.
class CaptureService : public Service {
public:
    struct Settings {
        CaptureFile::Open open = CaptureFile::openFile;
        std::size_t queuedBytes = 8'000'000; // some 30,000 exchanges; as much again may be with the disk
        std::chrono::milliseconds pauseAfterRefusal{1'000};
        std::chrono::milliseconds patienceAtEnd{500}; // with the disk; a service ends within a second
    };

    explicit CaptureService(const CaptureOptions& captureOptions);
    CaptureService(const CaptureOptions& captureOptions, const Settings& serviceSettings);
    ~CaptureService() override;

    std::string name() const override { return "capture"; }
    std::string start(RunningSite& runningSite) override;
    // The same without a running site: opens the file, and then captures what passes a feed, as long as the
    // watch lives.
    std::string begin(Messages& messages);
    [[nodiscard]] std::unique_ptr<ExchangeFeed::Watch> follow(ExchangeFeed& feed) const;
    // What waits is written. A write that never ends keeps its thread beyond the service's end.
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

private:
    class Writer;

    // Shared with its thread, which may outlive the service.
    const std::shared_ptr<Writer> writer;
    bool hasBegun = false;
    std::unique_ptr<ExchangeFeed::Watch> watch;
};

} // namespace host
