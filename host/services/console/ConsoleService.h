#pragma once

#include "Output.h"
#include "runtime/ExchangeQueue.h"
#include "services/PeriodicThread.h"
#include "services/RunningSite.h"
#include "services/Service.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace host {

struct Console;

// Shows the values of a running site and what people are to be told, on standard output and standard error.
class ConsoleService : public Service {
public:
    // `withFrames`: every telegram too, as a message. The console outlives the service.
    ConsoleService(Console& shownOn, OutputFormat outputFormat, const std::string& tableTitle,
                   bool withFrames);
    ~ConsoleService() override;

    std::string name() const override { return "console"; }
    std::string start(RunningSite& runningSite) override;
    // Shows what is left.
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

    // Changes that are not shown because they came faster than the output was read. After stop().
    std::uint64_t lostChanges() const { return lost.load(std::memory_order_acquire); }
    // Messages that stood on a screen that is gone. After stop().
    std::string lastWords() const { return output ? output->lastWords() : ""; }
    // Nobody reads standard output any more. Any thread.
    bool isClosed() const { return closed.load(std::memory_order_acquire); }

private:
    void show();
    void tellNews();
    std::vector<std::string> takeFrames();

    Console& console;
    const OutputFormat format;
    const std::string title;
    const bool showsFrames;
    RunningSite* site = nullptr; // from start() on
    std::unique_ptr<Output> output;
    ExchangeQueue frames; // that the lines' threads have put in
    std::unique_ptr<ExchangeFeed::Watch> watch;
    std::atomic<bool> closed{false};
    std::atomic<std::uint64_t> lost{0};

    PeriodicThread thread; // last: it works on all of the above
};

} // namespace host
