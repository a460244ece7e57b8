// Lines of a process that has many descriptors in use, or none left.

#include "ManyLines.h"
#include "ProcessFigures.h"
#include "Soak.h"
#include "SystemUse.h"

#include <HalvexDriverLink/CLink.h>

#include <gtest/gtest.h>

#include <limits>
#include <mutex>

#include <sys/resource.h>

using sim::Media;
using namespace std::chrono_literals;

namespace {

bool allRead(ManyLines& plant, std::uint32_t value) {
    for (int line = 1; line <= plant.count(); ++line)
        if (!plant.reads(line, 0, value))
            return false;
    return true;
}

void expectFresh(ManyLines& plant, std::uint32_t value) {
    for (int line = 1; line <= plant.count(); ++line)
        plant.memory(line).set(Media::Registers, 0, value);
    EXPECT_TRUE(Plant::eventually([&] { return allRead(plant, value); }));
}

// While it is on every free descriptor is taken, also those that fall free, when somebody asks for it.
class Famine {
public:
    void begin() {
        const std::lock_guard<std::mutex> lock(mutex);
        constexpr rlim_t few = 20; // or there would be thousands to take
        getrlimit(RLIMIT_NOFILE, &before);
        rlimit low = before;
        low.rlim_cur = static_cast<rlim_t>(openDescriptors()) + few;
        setrlimit(RLIMIT_NOFILE, &low);
        isOn = true;
        takeAll();
    }
    void end() {
        const std::lock_guard<std::mutex> lock(mutex);
        isOn = false;
        taken.clear();
        setrlimit(RLIMIT_NOFILE, &before);
    }
    void takeWhatIsFree() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (isOn)
            takeAll();
    }

private:
    void takeAll() { taken.push_back(std::make_unique<TakenDescriptors>(std::numeric_limits<int>::max())); }

    rlimit before{};
    std::mutex mutex;
    bool isOn = false;
    std::vector<std::unique_ptr<TakenDescriptors>> taken;
};

// A link of which, in a famine, the descriptor is gone as soon as it is closed to be opened anew.
class StarvingLink : public CLink {
public:
    StarvingLink(std::unique_ptr<CLink> wrapped, Famine& hunger) : link(std::move(wrapped)), famine(hunger) {}

    void reset() override {
        clearInterrupt();
        link->reset();
    }
    int open() override {
        link->close();
        famine.takeWhatIsFree();
        return link->open();
    }
    void close() override { link->close(); }
    int send(const char* data, int length, int timeoutMs) override {
        return link->send(data, length, timeoutMs);
    }
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override {
        return link->receive(buffer, capacity, received, timeoutMs);
    }
    int kind() const override { return link->kind(); }

private:
    void wake() override { link->interrupt(); }

    const std::unique_ptr<CLink> link;
    Famine& famine;
};

} // namespace

// Each line takes a few descriptors of the host's and a few of the controllers'; what they lack to 1,024 is
// taken before the host opens its links, so that those of its own lie beyond.
TEST(Descriptors, MoreThan1024InUseLeaveLinksThatOpenPollAndRecover) {
    const int rounds = soak::count(1, 10);
    ASSERT_TRUE(allowDescriptors(8000));
    ManyLines plant(ManyLines::mixed(soak::count<std::size_t>(9, 300)));
    const TakenDescriptors taken(1100);
    ASSERT_GT(taken.highest(), 1024);
    for (int line = 1; line <= plant.count(); ++line) {
        plant.addRegisters(line, 1);
        plant.rtu(line).scan = {1h, 1h, soak::count(100ms, 2000ms)}; // so many lines want a processor as well
        plant.rtu(line).timeout = soak::count(500ms, 3000ms);
    }
    plant.start();
    std::uint32_t value = 1;
    expectFresh(plant, value);
    const SystemUse before = SystemUse::now();
    for (int round = 0; round < rounds; ++round) {
        for (int line = 1; line <= plant.count(); ++line)
            plant.controllers().cut(line);
        EXPECT_TRUE(Plant::eventually([&] {
            for (int line = 1; line <= plant.count(); ++line)
                if (plant.reads(line, 0, value))
                    return false;
            return true;
        }));
        for (int line = 1; line <= plant.count(); ++line)
            ASSERT_EQ(plant.controllers().restore(line), "");
        expectFresh(plant, ++value);
    }
    // What a line makes at its first failure stays; the rounds after it add nothing.
    constexpr std::size_t ofALine = 4 * 1024; // bytes
    expectNoMoreThan(before, 256 * 1024 + ofALine * static_cast<std::size_t>(plant.count()));
    soak::tellFigures(std::to_string(before.descriptors) + " descriptors in use, " +
                      std::to_string(plant.count()) + " lines cut and back " + std::to_string(rounds) +
                      " times");
}

TEST(Descriptors, NoneLeftCostTheLinksThatAreOpenedAnewUntilThereAreSomeAgain) {
    const int rounds = soak::count(2, 30);
    Famine famine;
    ManyLines plant(ManyLines::mixed(6));
    plant.makeLinks([&famine](const host::LinkEnd& end) {
        return std::make_unique<StarvingLink>(host::makeLink(end), famine);
    });
    for (int line = 1; line <= plant.count(); ++line)
        plant.addRegisters(line, 2);
    plant.start();
    std::uint32_t value = 1;
    expectFresh(plant, value);
    const SystemUse before = SystemUse::now();
    std::uint64_t failedOpens = 0;
    for (int round = 0; round < rounds; ++round) {
        famine.begin();
        // Lines 1 to 3 are opened anew, one of each kind: the controller is silent, or its answers break off.
        sim::Faults broken;
        broken.shorten = 1;
        for (const int line : {1, 2, 3}) {
            if (plant.type(line) == LineType::Ethernet)
                plant.controllers().silence(line, ManyLines::station, true);
            else
                plant.controllers().setFaults(line, broken);
        }
        for (const int line : {1, 2, 3}) {
            const std::uint64_t opens = plant.status(line).failedOpens;
            EXPECT_TRUE(Plant::eventually([&] { return plant.status(line).failedOpens > opens; })) << line;
        }
        plant.controllers().silence(1, ManyLines::station, false);
        for (const int line : {2, 3})
            plant.controllers().setFaults(line, {});
        // The others go on.
        ++value;
        for (const int line : {4, 5, 6}) {
            plant.memory(line).set(Media::Registers, 0, value);
            EXPECT_TRUE(Plant::eventually([&] { return plant.reads(line, 0, value); })) << line;
        }
        for (const int line : {1, 2, 3}) {
            EXPECT_FALSE(plant.status(line).connected) << line;
            failedOpens += plant.status(line).failedOpens;
        }
        famine.end();
        expectFresh(plant, ++value);
    }
    expectNoMoreThan(before);
    plant.stop();
    soak::tellFigures(std::to_string(rounds) + " times without a descriptor, " + std::to_string(failedOpens) +
                      " failed opens; the lines that were open went on, the others came back");
}
