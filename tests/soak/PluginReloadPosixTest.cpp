// A host that loads the plug-in, works with it and unloads it, again and again.

#include "Plant.h"
#include "RecordingCore.h"
#include "Soak.h"
#include "SystemUse.h"

#include <HalvexAbstractDriver/DriverPluginInterface.h>
#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLinkSerial.h>
#include <HalvexDriverLink/CLinkUdp.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

using Halvex::CommTypeCode;

namespace {

constexpr int ethernet = 1;
constexpr int serial = 2;
constexpr int station = 5;

bool isMapped(const std::string& library) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(library) != std::string::npos)
            return true;
    return false;
}

class PluginReload : public testing::Test {
protected:
    PluginReload() {
        LoggerSettings logging;
        logging.directory = folder.path().toStdString();
        logging.traceFrames = true;
        CLogger::GetInstance()->configure(logging);
        EXPECT_EQ(simulator.start(), "");
        for (const int line : {ethernet, serial})
            simulator.memory(line, station).set(sim::Media::Registers, 1, 11);
    }

    ~PluginReload() override { CLogger::GetInstance()->configure({}); }

    std::unique_ptr<CChannel> makeChannel(DriverPluginInterface& driver, int id, CommTypeCode type,
                                          std::unique_ptr<CLink> link) {
        std::unique_ptr<CChannel> channel(driver.createChannel(id));
        channel->SetCommType(static_cast<int>(type));
        channel->SetLinks(std::move(link), nullptr);
        RemoteTerminalUnit record;
        record.id = station;
        record.scan.stationAddress = QString::number(station);
        record.sessionTimeOutMs = 10'000; // nothing is lost here
        record.periods = {1000, 1000, 1000};
        AnalogPoint point;
        point.number = 1;
        point.address = QStringLiteral("R1");
        channel->AddRtu(record)->GetPointList()->AddAnalogPoint(point);
        channel->InitChannel();
        channel->start();
        return channel;
    }

    // One life of the plug-in, from its file to its last value.
    void loadWorkAndUnload() {
        QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
        loader.setLoadHints({}); // Qt keeps a plug-in in memory unless told otherwise
        auto* const driver = qobject_cast<DriverPluginInterface*>(loader.instance());
        ASSERT_NE(driver, nullptr) << loader.errorString().toStdString();
        RecordingCore core;
        driver->initialize(&core);
        driver->loadTranslator();
        {
            UdpSettings udp;
            udp.host = "127.0.0.1";
            udp.port = simulator.port(ethernet);
            SerialSettings line;
            line.device = simulator.device(serial);
            const std::unique_ptr<CChannel> channels[] = {
                makeChannel(*driver, ethernet, CommTypeCode::SBusEthernet, std::make_unique<CLinkUdp>(udp)),
                makeChannel(*driver, serial, CommTypeCode::SBusSerial, std::make_unique<CLinkSerial>(line))};
            for (const auto& channel : channels)
                EXPECT_TRUE(Plant::eventually([&] {
                    const auto point = core.point(channel->channelId(), station, 1);
                    return point && point->value == 11;
                }));
            for (const auto& channel : channels)
                channel->SetShutdown(true);
            for (const auto& channel : channels) {
                EXPECT_TRUE(channel->wait());
                channel->CloseChannel();
            }
        }
        driver->fin();
        delete driver;
        EXPECT_TRUE(loader.unload());
        EXPECT_FALSE(isMapped("SBusDriver.so"));
    }

    const QTemporaryDir folder;
    sim::Simulator simulator{{{sim::udpLine(ethernet, {station}),
                               sim::serialLine(serial, {station}, sim::Framing::DataMode,
                                               folder.filePath(QStringLiteral("line")).toStdString())}}};
};

} // namespace

// The first lives make what is made once. Afterwards memory may differ by what the allocator keeps of the
// last life: far less than the plug-in's file, of which one more copy would show.
TEST_F(PluginReload, LeavesNothingBehind) {
    constexpr std::size_t growth = 1024 * 1024;        // bytes: 2.5 KiB for each of the many lives
    constexpr std::size_t linesOnTheirWay = 32 * 1024; // bytes, of the log; 80 for each of the many lives
    const int lives = soak::count(100, 500);
    const int firstLives = lives / 5;
    for (int i = 0; i < firstLives; ++i)
        loadWorkAndUnload();
    const SystemUse before = SystemUse::now();
    for (int i = firstLives; i < lives; ++i)
        loadWorkAndUnload();
    const SystemUse after = SystemUse::now();
    EXPECT_EQ(after.descriptors, before.descriptors);
    expectNoMoreThan(before, linesOnTheirWay);
    // An allocator that looks for faults keeps what was freed; it also finds what was not.
    if (before.allocated != 0) {
        EXPECT_LE(after.resident, before.resident + growth);
    }
    soak::tellFigures(std::to_string(lives) + " lives; resident " + std::to_string(before.resident / 1024) +
                      " KiB after " + std::to_string(firstLives) + " of them and " +
                      std::to_string(after.resident / 1024) + " KiB after all; allocated " +
                      std::to_string(before.allocated) + " and " + std::to_string(after.allocated) +
                      " bytes");
}
