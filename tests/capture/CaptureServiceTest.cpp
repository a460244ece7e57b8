#include "services/capture/CaptureService.h"

#include "CaptureDirectory.h"
#include "Exchanges.h"
#include "Printers.h"
#include "TestDisk.h"
#include "services/capture/CapturedDatagrams.h"

#include <gmock/gmock.h>

#include <thread>

using host::CaptureService;
using host::Exchange;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

class NoCommands : public host::CommandTaker {
public:
    std::string submit(const host::Command&, host::CommandDone) override { return "not here"; }
};

class CaptureOfASite : public CaptureDirectory {
protected:
    // With no pause behind a refusal.
    CaptureService::Settings settings() const {
        CaptureService::Settings settings;
        settings.open = disk.open();
        settings.pauseAfterRefusal = 0ms;
        return settings;
    }

    void begin(const CaptureService::Settings& settings) {
        service.emplace(options(), settings);
        ASSERT_EQ(service->start(runningSite), "");
    }

    void publish(int count) {
        for (int i = 0; i < count; ++i)
            feed.publish(readOfTwoRegisters());
    }

    std::uint64_t figure(const std::string& name) const {
        for (const host::ServiceFigure& one : service->figures())
            if (one.name == name)
                return one.value;
        ADD_FAILURE() << "no figure " << name;
        return 0;
    }

    bool waitUntil(const std::function<bool()>& isSo) const {
        for (const auto end = Clock::now() + 30s; !isSo() && Clock::now() < end;)
            std::this_thread::sleep_for(1ms);
        return isSo();
    }

    // The disk hangs with the frames of an exchange.
    void hangWithOne() {
        disk.hang();
        publish(1);
        ASSERT_TRUE(waitUntil([this] { return disk.keepsAWriteWaiting(); }));
    }

    bool waitUntilFigure(const std::string& name, std::uint64_t value) const {
        return waitUntil([&] { return figure(name) == value; });
    }

    TestDisk disk;
    host::ExchangeFeed feed;
    host::Messages messages;
    std::optional<CaptureService> service;

private:
    const host::Site site{};
    host::ValueStore values{site};
    NoCommands commands;

protected:
    host::RunningSite runningSite{site, values, feed, commands, messages, {}, {}, {}};
};

// As the file holds them.
QByteArray captureOf(const std::vector<Exchange>& exchanges) {
    host::TelegramBytes all = host::pcapHeader();
    host::CapturedDatagrams datagrams;
    for (const Exchange& exchange : exchanges)
        for (const host::Datagram& datagram : datagrams.make(exchange)) {
            const host::TelegramBytes record = pcapRecord(datagram);
            all.insert(all.end(), record.begin(), record.end());
        }
    return {reinterpret_cast<const char*>(all.data()), static_cast<int>(all.size())};
}

} // namespace

TEST_F(CaptureOfASite, IsInTheFileWhileItGoesOn) {
    begin(settings());
    const Exchange serial =
        exchangeOf(host::Framing::BreakMode, "05 0D 03 00 C8 00 01 46 41", "15", host::Answer::Refused);
    feed.publish(readOfTwoRegisters());
    feed.publish(serial);
    ASSERT_TRUE(waitUntilFigure("frames", 4));
    EXPECT_EQ(contentOf("line.pcap"), captureOf({readOfTwoRegisters(), serial}));
    EXPECT_EQ(figure("lost"), 0U);
    EXPECT_THAT(messages.take(), IsEmpty());
}

TEST_F(CaptureOfASite, HoldsAllThatCameBeforeItsEnd) {
    begin(settings());
    publish(500);
    service->stop();
    EXPECT_EQ(figure("frames"), 1'000U);
    EXPECT_TRUE(contentOf("line.pcap") == captureOf(std::vector<Exchange>(500, readOfTwoRegisters())));
}

TEST_F(CaptureOfASite, LooksAtNothingAfterItsEnd) {
    begin(settings());
    EXPECT_TRUE(feed.isWatched());
    service->stop();
    EXPECT_FALSE(feed.isWatched());
}

TEST_F(CaptureOfASite, TellsWhyItCannotStart) {
    put("line.pcap", "a letter");
    service.emplace(options());
    EXPECT_THAT(service->start(runningSite), HasSubstr("exists and is no capture"));
    EXPECT_FALSE(feed.isWatched());
    EXPECT_EQ(contentOf("line.pcap"), "a letter");
}

TEST_F(CaptureOfASite, EndsAtOnceWhenItNeverStarted) {
    CaptureService::Settings patient = settings();
    patient.patienceAtEnd = 60s;
    service.emplace(options(), patient);
    const auto before = Clock::now();
    service->stop();
    EXPECT_LT(Clock::now() - before, 30s);
    EXPECT_EQ(fileNames(), QStringList{});
}

TEST_F(CaptureOfASite, TellsOnceThatTheDiskRefusesAndOnceThatItTakesFramesAgain) {
    begin(settings());
    publish(1);
    ASSERT_TRUE(waitUntilFigure("frames", 2));
    disk.refuse();
    publish(1);
    ASSERT_TRUE(waitUntilFigure("lost", 2));
    publish(2);
    ASSERT_TRUE(waitUntilFigure("lost", 6));
    EXPECT_THAT(messages.take(),
                ElementsAre(HasSubstr("line.pcap: the disk refuses frames; they are lost until it takes them "
                                      "again")));
    disk.work();
    publish(1);
    ASSERT_TRUE(waitUntilFigure("frames", 4));
    publish(1);
    ASSERT_TRUE(waitUntilFigure("frames", 6));
    EXPECT_THAT(messages.take(),
                ElementsAre(HasSubstr("line.pcap: the disk takes frames again; 6 were lost")));
    EXPECT_EQ(contentOf("line.pcap"), captureOf(std::vector<Exchange>(3, readOfTwoRegisters())));
}

TEST_F(CaptureOfASite, LeavesADiskAloneThatHasJustRefused) {
    CaptureService::Settings pausing = settings();
    pausing.pauseAfterRefusal = 1h;
    begin(pausing);
    disk.refuse();
    publish(1);
    ASSERT_TRUE(waitUntilFigure("lost", 2));
    disk.work();
    publish(1);
    ASSERT_TRUE(waitUntilFigure("lost", 4));
    EXPECT_EQ(figure("frames"), 0U);
}

TEST_F(CaptureOfASite, LosesWhatComesWhileTheQueueIsFull) {
    CaptureService::Settings narrow = settings();
    narrow.queuedBytes = 15 * (sizeof(Exchange) + 16 + 19); // 15 exchanges
    begin(narrow);
    hangWithOne();
    publish(15);
    EXPECT_EQ(figure("lost"), 0U);
    publish(10);
    EXPECT_EQ(figure("lost"), 20U);
    EXPECT_THAT(messages.take(),
                ElementsAre(HasSubstr("line.pcap: more frames come than the disk takes; some are lost")));
    disk.work();
    ASSERT_TRUE(waitUntilFigure("frames", 32));
    publish(1);
    ASSERT_TRUE(waitUntilFigure("frames", 34)) << "there is room again";
    EXPECT_EQ(figure("lost"), 20U);
    EXPECT_THAT(messages.take(), IsEmpty());
}

TEST_F(CaptureOfASite, EndsWithinASecondWhileTheDiskHangs) {
    begin(settings());
    hangWithOne();
    publish(100);
    const auto before = Clock::now();
    service->stop();
    EXPECT_LT(Clock::now() - before, 1s);
    EXPECT_EQ(figure("lost"), 200U) << "what waited";
    service.reset();
    EXPECT_LT(Clock::now() - before, 1s) << "waits once";
    disk.work();
    EXPECT_TRUE(waitUntil([this] { return !disk.isInUse(); })) << "its thread ends when the disk lets it";
}

TEST_F(CaptureOfASite, TellsNobodyAfterItsEnd) {
    CaptureService::Settings impatient = settings();
    impatient.patienceAtEnd = 0ms;
    begin(impatient);
    impatient.open = nullptr;
    hangWithOne();
    service->stop();
    service.reset();
    disk.refuse();
    EXPECT_TRUE(waitUntil([this] { return !disk.isInUse(); }));
    EXPECT_THAT(messages.take(), IsEmpty());
}
