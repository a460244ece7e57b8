#include "ChannelBench.h"
#include "EngineCalls.h"

#include "SBusDelayedQueue.h"
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
        initialise(serial);
        return protocols<SBusSerialDriver>().value(0);
    }

    // Of the only point, which the RTU splits when it is initialised.
    static QString addressOf(CRtu* rtu) { return rtu->GetPointList()->GetAnalogPoint(1)->address; }
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
    setLink();
    channel->SetCommType(ethernet);
    channel->InitChannel();
    EXPECT_EQ(journal(), QStringList{"off reset"});
    EXPECT_FALSE(channel->IsConnect());
}

TEST_F(ChannelSetup, PreparesTheLinkBeforeAnythingElse) {
    ControllerLink* const link = setLink();
    CRtu* const rtu = addPollingRtu(1, 5);
    channel->SetCommType(ethernet);
    int protocolsBefore = -1;
    QString addressBefore;
    link->onCall = [&](const char*) {
        protocolsBefore = protocols().size();
        addressBefore = addressOf(rtu);
    };
    channel->InitChannel();
    EXPECT_EQ(protocolsBefore, 0);
    EXPECT_EQ(addressBefore, QStringLiteral("R10"));
}

TEST_F(ChannelSetup, HandsProtocolAndQueueToEachRtuBeforeItIsInitialised) {
    struct Attachment {
        int rtuId;
        const SBusProtocolBase* protocol;
        const SBusDelayedQueue* queue;
        QString address; // whole until the RTU is initialised
    };
    QList<Attachment> attachments;
    engineCalls.attachProtocol = [&](SBusRtu& rtu, SBusProtocolBase* protocol, SBusDelayedQueue* queue) {
        attachments << Attachment{rtu.GetRtuId(), protocol, queue, addressOf(&rtu)};
    };
    addPollingRtu(2, 6);
    addPollingRtu(1, 5);
    channel->SetCommType(ethernet);
    channel->InitChannel();
    ASSERT_EQ(attachments.size(), 2);
    EXPECT_EQ(attachments[0].rtuId, 1);
    EXPECT_EQ(attachments[1].rtuId, 2);
    for (const Attachment& attachment : attachments) {
        EXPECT_EQ(attachment.protocol, protocols().value(0));
        EXPECT_NE(attachment.queue, nullptr);
        EXPECT_EQ(attachment.queue, attachments[0].queue);
        EXPECT_EQ(attachment.address, QStringLiteral("R10"));
    }
}

TEST_F(ChannelSetup, HandsNeitherProtocolNorQueueToTheRtusOfAnUnknownType) {
    int attachments = 0;
    engineCalls.attachProtocol = [&](SBusRtu&, SBusProtocolBase* protocol, SBusDelayedQueue* queue) {
        ++attachments;
        EXPECT_EQ(protocol, nullptr);
        EXPECT_EQ(queue, nullptr);
    };
    CRtu* const rtu = addPollingRtu(1, 5);
    channel->SetCommType(94023);
    channel->InitChannel();
    EXPECT_EQ(attachments, 1);
    EXPECT_EQ(addressOf(rtu), QStringLiteral("R")) << "initialised all the same";
}

TEST_F(ChannelSetup, PassesOverAnEmptyPlaceAmongTheRtus) {
    QList<int> attached;
    engineCalls.attachProtocol = [&](SBusRtu& rtu, SBusProtocolBase*, SBusDelayedQueue*) {
        attached << rtu.GetRtuId();
    };
    addSerialRtu(1, "0", "10");
    addEmptyPlace(2);
    addSerialRtu(3, "0", "30");
    initialise(serial);
    EXPECT_EQ(attached, (QList<int>{1, 3}));
    EXPECT_EQ(protocols<SBusSerialDriver>().value(0)->breakDelay, 30);
    takeEmptyPlaceAway(2);
}

// A request without telegrams is no traffic, and counts as one that has ended.
TEST_F(ChannelSetup, ASecondTimeKeepsTheProtocolAndMakesAnotherQueueWithoutDeletingTheFirst) {
    QList<SBusDelayedQueue*> queues;
    engineCalls.attachProtocol = [&](SBusRtu&, SBusProtocolBase*, SBusDelayedQueue* queue) {
        queues << queue;
    };
    QList<SBusDelayedQueue*> destroyed;
    engineCalls.destroyQueue = [&](SBusDelayedQueue* queue) { destroyed << queue; };
    setLink();
    auto* const rtu = static_cast<SBusRtu*>(addRtu(1, 5));
    initialise(ethernet);
    const SBusProtocolBase* const protocol = protocols().value(0);
    initialise(ethernet);
    EXPECT_EQ(protocols(), QList<SBusProtocolBase*>{const_cast<SBusProtocolBase*>(protocol)});
    ASSERT_EQ(queues.size(), 2);
    EXPECT_NE(queues[0], queues[1]);
    EXPECT_TRUE(destroyed.isEmpty());

    SBusRequest request;
    request.rtu = rtu;
    queues[0]->schedule(0, request);
    runTurns(3);
    EXPECT_EQ(rtu->GetRtuStatus().requests, 0u) << "nobody releases what waits in the first queue";
    queues[1]->schedule(0, request);
    runTurns(1);
    EXPECT_EQ(rtu->GetRtuStatus().requests, 1u);

    channel.reset();
    EXPECT_EQ(destroyed, QList<SBusDelayedQueue*>{queues[1]});
    delete queues[0]; // nobody else does
}

TEST_F(ChannelSetup, InitialisesEnabledRtusAlone) {
    RemoteTerminalUnit disabled = record(2, 2);
    disabled.enabled = false;
    CRtu* const off = channel->AddRtu(disabled);
    addRegister(off, "R10");
    CRtu* const on = addPollingRtu(1, 1);
    channel->SetCommType(ethernet);
    channel->InitChannel();
    EXPECT_EQ(addressOf(on), QStringLiteral("R"));
    EXPECT_EQ(addressOf(off), QStringLiteral("R10"));
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

TEST_F(ChannelSetup, TakesLineSettingsAsDecimalNumbersWhateverTheyBeginWith) {
    addSerialRtu(1, "010", "0100");
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 10);
    EXPECT_EQ(protocol->breakDelay, 100);
}

TEST_F(ChannelSetup, TakesHexadecimalLineSettingsAsZero) {
    addSerialRtu(1, "0x1", "0x10");
    const SBusSerialDriver* protocol = initialisedSerial();
    ASSERT_NE(protocol, nullptr);
    EXPECT_EQ(protocol->transmitMode, 0);
    EXPECT_EQ(protocol->breakDelay, 0);
}

// An Ethernet protocol object has its sequence numbers where a serial one has the line settings.
TEST_F(ChannelSetup, TakesNoLineSettingsOnAnEthernetLine) {
    const ControllerLink* link = setLink();
    addRegister(addSerialRtu(1, "7", "10"), "R10");
    initialise(ethernet);
    runTurns(1);
    ASSERT_EQ(link->telegrams().size(), 1);
    EXPECT_EQ(link->telegrams()[0].mid(6, 2), QByteArray(2, '\0'));
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

// The protocol object goes as the channel's child: behind what the channel's base deletes.
TEST_F(ChannelSetup, TakesItsQueueThenItsRtusThenItsProtocolAlongWhenItGoes) {
    QStringList gone;
    engineCalls.destroyQueue = [&](SBusDelayedQueue*) { gone << QStringLiteral("queue"); };
    const CRtu* const rtu = addRtu(1, 5);
    initialise(ethernet);
    QObject::connect(rtu, &QObject::destroyed, [&] { gone << QStringLiteral("rtu"); });
    QObject::connect(protocols().value(0), &QObject::destroyed, [&] { gone << QStringLiteral("protocol"); });
    channel.reset();
    EXPECT_EQ(gone, (QStringList{"queue", "rtu", "protocol"}));
}

TEST_F(ChannelSetup, GoesWithoutEverHavingBeenSetUp) {
    engineCalls.destroyQueue = [&](SBusDelayedQueue*) { ADD_FAILURE() << "there is no queue"; };
    channel.reset();
}
