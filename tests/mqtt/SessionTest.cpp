#include "RunningHost.h"
#include "SmallSite.h"
#include "services/mqtt/PlainLayout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// What the test lets happen at the broker, and what came there.
struct PlayedBroker {
    int connections = 0;
    bool acknowledges = true;
    int lastId = 0;
    BrokerEvents next; // for the next exchange
    std::vector<std::string> published;
    std::vector<std::string> subscribed;
};

class PlayedClient : public BrokerClient {
public:
    explicit PlayedClient(PlayedBroker& playedBroker) : broker(playedBroker) {}

    std::string connect(const MqttMessage&) override {
        ++broker.connections;
        broker.next.hasConnected = true;
        return {};
    }
    void exchange(std::chrono::milliseconds, BrokerEvents& events) override {
        events = std::exchange(broker.next, {});
    }
    void subscribe(const Subscription& one) override { broker.subscribed.push_back(one.filter); }
    Publication publish(const MqttMessage& message) override {
        broker.published.push_back(message.topic + " " + message.payload);
        ++broker.lastId;
        if (broker.acknowledges)
            broker.next.acknowledged.push_back(broker.lastId);
        return {Publication::Fate::Sent, broker.lastId};
    }
    void disconnect() override {}

private:
    PlayedBroker& broker;
};

// One that wants a birth, or an end of the session, when a message says so.
class AskedLayout : public PlainLayout {
public:
    using PlainLayout::PlainLayout;
    MessageMeaning read(const MqttMessage& message) override {
        MessageMeaning meaning;
        meaning.wantsBirth = message.payload == "birth";
        meaning.endsSession = message.payload == "end";
        return meaning;
    }
    bool isListenedTo() const override { return isHeard; }
    bool isHeard = true;
};

class Session : public testing::Test {
protected:
    MqttSession& session() {
        if (!made) {
            MqttSession::Settings settings;
            settings.broker = "mqtt://h:1883";
            settings.makeClient = [this] { return std::make_unique<PlayedClient>(broker); };
            settings.pauses = {0ms, 0ms, 0ms};
            settings.turn = 0ms;
            settings.busyTurn = 0ms;
            settings.acknowledgementLimit = acknowledgementLimit;
            made = std::make_unique<MqttSession>(settings, host.running, layout, nullptr);
        }
        return *made;
    }
    void turn(int times) {
        for (int i = 0; i < times; ++i)
            session().turn();
    }
    void come(const std::string& payload) {
        MqttMessage message;
        message.payload = payload;
        broker.next.messages.push_back(message);
    }
    std::string told() {
        std::string all;
        for (const std::string& one : host.messages.take())
            all += one;
        return all;
    }

    RunningHost host{smallSite()};
    AskedLayout layout{{"sbus", "north", 1, true}, host.store.points()};
    PlayedBroker broker;
    std::chrono::milliseconds acknowledgementLimit{60'000};
    std::unique_ptr<MqttSession> made;
};

} // namespace

TEST_F(Session, BeginsWithTheBirthAndThenTellsStatesAndCurrentValues) {
    turn(4);
    ASSERT_THAT(broker.published, SizeIs(6));
    EXPECT_THAT(broker.published[0], HasSubstr("sbus/north/$state {\"state\":\"online\""));
    EXPECT_THAT(broker.published[1], HasSubstr("waterworks/$state"));
    EXPECT_THAT(broker.published[2], HasSubstr("pump-house/$state"));
    EXPECT_THAT(broker.published[5], HasSubstr("LEVEL {\"value\":null,\"quality\":\"never read\""));
    EXPECT_THAT(broker.subscribed, Contains("sbus/north/+/+/+/set"));
}

TEST_F(Session, TellsItsBirthAnewWhenItIsAskedTo) {
    turn(4);
    broker.published.clear();
    come("birth");
    turn(4);
    EXPECT_THAT(broker.published, ElementsAre(HasSubstr("sbus/north/$state {\"state\":\"online\"")));
    EXPECT_EQ(broker.connections, 1);
}

TEST_F(Session, SaysThatItEndsAndConnectsAnewWhenItIsAskedTo) {
    turn(4);
    broker.published.clear();
    come("end");
    turn(1);
    EXPECT_THAT(broker.published, Contains(HasSubstr("sbus/north/$state {\"state\":\"offline\"")));
    turn(2);
    EXPECT_EQ(broker.connections, 2);
}

TEST_F(Session, KeepsChangesAsLongAsNobodyListens) {
    turn(4);
    layout.isHeard = false;
    broker.published.clear();
    host.publish(2, 7);
    turn(3);
    EXPECT_THAT(broker.published, IsEmpty());
    layout.isHeard = true;
    turn(1);
    EXPECT_THAT(broker.published, Contains(HasSubstr("LEVEL {\"value\":7")));
}

TEST_F(Session, LeavesABrokerThatAcknowledgesNothing) {
    acknowledgementLimit = 20ms;
    broker.acknowledges = false;
    turn(4);
    EXPECT_TRUE(eventually([this] {
        turn(1);
        return broker.connections > 1;
    }));
    EXPECT_THAT(told(), HasSubstr("acknowledged nothing"));
}

TEST_F(Session, TellsOnceWhatTheBrokerRefusesAndCountsIt) {
    turn(4);
    for (int i = 0; i < 3; ++i) {
        broker.next.refusal = "this client may not publish there";
        broker.next.refused = 2;
        turn(1);
    }
    const std::string all = told();
    EXPECT_THAT(all, HasSubstr("may not publish there"));
    EXPECT_EQ(all.find("may not publish there"), all.rfind("may not publish there"));
    for (const ServiceFigure& one : session().figures())
        if (one.name == "refused messages")
            EXPECT_EQ(one.value, 6U);
}

TEST_F(Session, TellsOnceThatTheBrokerIsAway) {
    turn(2);
    for (int i = 0; i < 3; ++i) {
        broker.next = {};
        broker.next.failure = "no connection";
        turn(1);
        broker.next = {};
    }
    const std::string all = told();
    EXPECT_THAT(all, HasSubstr("MQTT: mqtt://h:1883: no connection"));
    EXPECT_EQ(all.find("no connection"), all.rfind("no connection"));
}
