#include "EveryLine.h"

using BadLine = EveryLine;
using sim::Media;

ON_EVERY_LINE(BadLine);

namespace {

sim::Options misbehaving(LineType type) {
    sim::Options options;
    options.seed = 7;
    options.faults.drop = 0.03;
    options.faults.duplicate = 0.05;
    options.faults.nak = 0.03;
    options.faults.shorten = 0.03;
    // A serial answer carries nothing that tells which request it belongs to: one that comes after the
    // time-out cannot be told from the next. And after each wrong checksum a serial line is drained for five
    // seconds, which other tests wait for.
    if (type == LineType::Ethernet) {
        options.faults.late = 0.03;
        options.faults.lateBy = std::chrono::milliseconds(150);
        options.faults.crc = 0.03;
    }
    return options;
}

} // namespace

// Registers hold their own addresses, so that a value at the wrong point shows.
TEST_P(BadLine, PublishesNoValueThatTheControllerNeverHad) {
    constexpr unsigned count = 300;
    Plant plant(GetParam(), {5}, misbehaving(GetParam()));
    // On a serial line long enough that no answer is late by itself, however busy the machine is.
    plant.setSessionTimeOut(GetParam() == LineType::Ethernet ? 100 : 1'000);
    plant.setScanPeriods({200, 50, 30});
    for (unsigned i = 0; i < count; ++i) {
        plant.memory(5).set(Media::Registers, i, i);
        plant.addAnalogPoint(5, i, QStringLiteral("R%1").arg(i));
    }
    plant.start();

    ASSERT_TRUE(Plant::eventually([&] {
        const RtuStatus status = plant.rtu(5).GetRtuStatus();
        return status.answers >= 100 && status.timeOuts + status.errors >= 3;
    }));
    ASSERT_TRUE(plant.stop());
    for (const RecordingCore::Publication& publication : Plant::core().publications())
        for (const PointUpdate& update : publication.updates)
            ASSERT_EQ(update.value, update.number);
}
