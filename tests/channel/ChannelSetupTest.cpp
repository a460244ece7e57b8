#include "ChannelBench.h"

#include "SBusEthernetDriver.h"
#include "SBusRtu.h"
#include "SBusSerialDriver.h"

namespace {

class ChannelSetup : public ChannelBench {
protected:
    // The protocol objects among the channel's children.
    template <typename Protocol = SBusProtocolBase>
    QList<Protocol*> protocols() const {
        QList<Protocol*> result;
        for (QObject* child : channel->children())
            if (auto* protocol = dynamic_cast<Protocol*>(child))
                result << protocol;
        return result;
    }

    CRtu* addSerialRtu(int id, const char* transmitType, const char* breakDelay, bool enabled = true) {
        RemoteTerminalUnit info = record(id, id);
        info.enabled = enabled;
        info.scan.transmitType = QString::fromLatin1(transmitType);
        info.scan.breakDelay = QString::fromLatin1(breakDelay);
        return channel->AddRtu(info);
    }

    const SBusSerialDriver* initialisedSerial() {
        channel->SetCommType(serial);
        EXPECT_TRUE(channel->InitChannel());
        return protocols<SBusSerialDriver>().value(0);
    }
};

} // namespace

TEST_F(ChannelSetup, ConstructionKeepsIdAndCoreAndDoesNothingElse) {
    EXPECT_EQ(channel->channelId(), channelId);
    EXPECT_EQ(channel->GetCore(), &core);
    EXPECT_FALSE(channel->IsConnect());
    EXPECT_TRUE(protocols().isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ChannelSetup, DeclaresNoMetaObjectOfItsOwn) {
    EXPECT_STREQ(channel->metaObject()->className(), "CChannel");
}

TEST_F(ChannelSetup, CreatesRtusOfItsOwnKindForTheCaller) {
    const std::unique_ptr<CRtu> rtu(channel->CreateRtu(record(5, 77)));
    EXPECT_NE(dynamic_cast<SBusRtu*>(rtu.get()), nullptr);
    EXPECT_EQ(rtu->GetChannel(), channel.get());
    EXPECT_EQ(rtu->GetRtuId(), 5);
    EXPECT_EQ(rtu->GetRtuInfo().scan.stationAddress, QStringLiteral("77"));
    EXPECT_TRUE(channel->GetRtuMap().isEmpty());
}

TEST_F(ChannelSetup, MakesTheSerialProtocolForASerialLine) {
    channel->SetCommType(serial);
    EXPECT_TRUE(channel->InitChannel());
    EXPECT_EQ(protocols().size(), 1);
    EXPECT_EQ(protocols<SBusSerialDriver>().size(), 1);
}

TEST_F(ChannelSetup, MakesTheEthernetProtocolForAnEthernetLine) {
    channel->SetCommType(ethernet);
    EXPECT_TRUE(channel->InitChannel());
    EXPECT_EQ(protocols().size(), 1);
    EXPECT_EQ(protocols<SBusEthernetDriver>().size(), 1);
}

TEST_F(ChannelSetup, MakesNoProtocolForAnyOtherTypeAndStillSucceeds) {
    for (int type : {0, 94020, 94023, -1}) {
        channel->SetCommType(type);
        EXPECT_TRUE(channel->InitChannel()) << type;
        EXPECT_TRUE(protocols().isEmpty()) << type;
    }
}

TEST_F(ChannelSetup, PreparesTheLinkWithoutOpeningIt) {
    const ControllerLink* link = setLink();
    channel->SetCommType(ethernet);
    channel->InitChannel();
    EXPECT_EQ(link->resetCount(), 1);
    EXPECT_EQ(link->openCount(), 0);
    EXPECT_FALSE(channel->IsConnect());
}

TEST_F(ChannelSetup, InitialisesEnabledRtusAlone) {
    RemoteTerminalUnit disabled = record(2, 2);
    disabled.enabled = false;
    CRtu* const off = channel->AddRtu(disabled);
    addRegister(off, "R10");
    CRtu* const on = addPollingRtu(1, 1);
    channel->SetCommType(ethernet);
    channel->InitChannel();
    EXPECT_EQ(on->GetPointList()->GetAnalogPoint(1)->address, QStringLiteral("R"));
    EXPECT_EQ(off->GetPointList()->GetAnalogPoint(1)->address, QStringLiteral("R10"));
}

TEST_F(ChannelSetup, TakesTheLineSettingsOfTheRtuWithTheHigherKey) {
    addSerialRtu(1, "1", "10");
    addSerialRtu(2, "0", "35");
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 0);
    EXPECT_EQ(protocol->breakDelay, 35);
}

TEST_F(ChannelSetup, TakesTheLineSettingsByKeyAndNotByTheOrderOfAdding) {
    addSerialRtu(9, "1", "90");
    addSerialRtu(2, "0", "20");
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 1);
    EXPECT_EQ(protocol->breakDelay, 90);
}

TEST_F(ChannelSetup, TakesTheLineSettingsOfADisabledRtuToo) {
    addSerialRtu(1, "1", "10");
    addSerialRtu(2, "0", "70", false);
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 0);
    EXPECT_EQ(protocol->breakDelay, 70);
}

TEST_F(ChannelSetup, TakesLineSettingsThatAreNoNumbersAsZero) {
    addSerialRtu(1, "break", "ten");
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 0);
    EXPECT_EQ(protocol->breakDelay, 0);
}

TEST_F(ChannelSetup, TakesEmptyLineSettingsAsZero) {
    addSerialRtu(1, "", "");
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 0);
    EXPECT_EQ(protocol->breakDelay, 0);
}

TEST_F(ChannelSetup, PassesAnyTransmitModeOn) {
    addSerialRtu(1, "2", "-5");
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 2);
    EXPECT_EQ(protocol->breakDelay, -5);
}

TEST_F(ChannelSetup, KeepsTheProtocolsOwnSettingsWithoutRtus) {
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 1);
    EXPECT_EQ(protocol->breakDelay, 10);
}

TEST_F(ChannelSetup, ClosingClosesTheLinkAndDisconnects) {
    const ControllerLink* link = setLink();
    channel->SetConnect(true);
    channel->CloseChannel();
    EXPECT_GE(link->closeCount(), 1);
    EXPECT_FALSE(channel->IsConnect());
}

TEST_F(ChannelSetup, ClosingWithoutALinkLeavesTheConnectedFlag) {
    channel->SetConnect(true);
    channel->CloseChannel();
    EXPECT_TRUE(channel->IsConnect());
    channel->SetConnect(false);
    channel->CloseChannel();
    EXPECT_FALSE(channel->IsConnect());
}

TEST_F(ChannelSetup, ClosingLogsNothing) {
    setLink();
    channel->SetConnect(true);
    log.clear();
    channel->CloseChannel();
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ChannelSetup, TakesItsProtocolAlongWhenItGoes) {
    channel->SetCommType(ethernet);
    channel->InitChannel();
    bool destroyed = false;
    QObject::connect(protocols().value(0), &QObject::destroyed, [&destroyed] { destroyed = true; });
    channel.reset();
    EXPECT_TRUE(destroyed);
}
