#pragma once

#include "services/PeriodicThread.h"
#include "services/RunningSite.h"
#include "services/Service.h"
#include "site/HistorySettings.h"

#include <atomic>
#include <memory>
#include <string>

namespace host {

class HistoryWriter;

// Records every change of a value or a quality. What waits to be recorded is the store's ring of changes, so
// a file that cannot be written, or slowly, holds nothing up; what the ring loses is among the figures.
class HistoryService : public Service {
public:
    explicit HistoryService(const HistorySettings& historySettings);
    ~HistoryService() override;

    std::string name() const override { return "history"; }
    // Never fails for the sake of the file, which may become writable later.
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

private:
    void show();

    const HistorySettings settings;
    std::unique_ptr<HistoryWriter> writer; // from start() to stop()
    std::atomic<std::uint64_t> rows{0};
    std::atomic<std::uint64_t> lost{0};
    std::atomic<std::uint64_t> failures{0};
    std::atomic<std::uint64_t> bytes{0};
    PeriodicThread thread; // last: it works on all of the above
};

} // namespace host
