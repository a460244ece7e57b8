#include "RefereedLine.h"

#include "PublishingRtu.h"

#include <HalvexDriverLink/CLinkUdp.h>

namespace {

constexpr int rtuId = 3;

// A controller with as many elements of each kind as an address can name.
sim::Options largeMemory() {
    sim::Options options;
    options.sizes.elements.fill(65536);
    return options;
}

} // namespace

RefereedLine::RefereedLine() : simulator({{sim::udpLine(lineId, {0, station, 254})}}, largeMemory()) {
    EXPECT_EQ(simulator.start(), "");
    UdpSettings settings;
    settings.host = "127.0.0.1";
    settings.port = simulator.port(lineId);
    CLink* const link =
        channel.take<CLink>(std::make_unique<TappedLink>(std::make_unique<CLinkUdp>(settings), capture));
    EXPECT_EQ(link->open(), 0);
    engine->setLink(link);
}

void RefereedLine::exchange(const SBusRequestItem& item) {
    exchangeWith(station, item);
}

void RefereedLine::exchangeWith(int otherStation, const SBusRequestItem& item) {
    constexpr int patienceMs = 30'000;
    run(stationRecord(rtuId, QString::number(otherStation), patienceMs), item);
}

void RefereedLine::exchangeInVain(const SBusRequestItem& item) {
    constexpr int shortTimeOutMs = 20;
    run(stationRecord(rtuId, QString::number(station), shortTimeOutMs), item);
}

void RefereedLine::run(const RemoteTerminalUnit& record, const SBusRequestItem& item) {
    SBusRequest request;
    request.rtu = channel.add<PublishingRtu>(record);
    request.name = QStringLiteral("telegram");
    request.items = {item};
    engine->submitRequest(request);
    engine->processNextRequest();
}

void RefereedLine::skipToSequence(quint16 sequence) {
    QByteArray unsent;
    for (; nextSequence != sequence; ++nextSequence)
        engine->buildReadFrame(unsent, {}, station);
}

void RefereedLine::exchangeAs(const SBusRequestItem& item, const QString& asked, const QString& answered) {
    const QString number = QString::number(nextSequence++);
    meant << number + QStringLiteral(" station 5: ") + asked << number + QLatin1Char(' ') + answered;
    exchange(item);
}

QStringList RefereedLine::reading() const {
    return dissect(capture);
}

void RefereedLine::expectToBeReadAsMeant() const {
    const QStringList read = reading();
    ASSERT_EQ(read.size(), meant.size());
    for (int i = 0; i < read.size(); ++i)
        EXPECT_EQ(read[i], meant[i]);
}
