#include "SmallSite.h"
#include "services/mqtt/BatchLayout.h"
#include "services/mqtt/SetMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr qint64 moment = 1'795'340'000'125; // 2026-11-22T09:33:20.125Z

// Status point RUN, analog points FLOW (float) and LEVEL.
class LayoutTest : public testing::Test {
protected:
    LayoutTest() : site(smallSite()) {
        auto metres = std::make_shared<Engineering>();
        metres->unit = "m";
        site.channels[0].rtus[0].points[2].engineering = metres;
        site.name = "north";
    }
    static ToldChange change(PointIndex index, double value, PointQuality quality = PointQuality::Good) {
        return {index, {value, moment, moment, quality, 1}};
    }
    std::string told(Layout& layout, const ToldChange& one) const {
        MqttMessage message;
        EXPECT_EQ(layout.tellChanges(&one, 1, message), 1U);
        return message.topic + (message.isRetained ? " retained " : " ") + message.payload;
    }
    CommandRequest request(const std::string& payload) const {
        MqttMessage message{"sbus/north/waterworks/pump-house/LEVEL/set", payload};
        return readSetMessage(message, Topics("sbus", "north", points), points).value();
    }

    Site site;
    const PointTable points{site};
    PlainLayout plain{{"sbus", "north", 1, true}, points};
    BatchLayout batch{{"sbus", "north", 1, true}, points};
};

} // namespace

TEST_F(LayoutTest, HasATopicForEachPointWithItsValueRetained) {
    EXPECT_EQ(told(plain, change(2, 415)),
              "sbus/north/waterworks/pump-house/LEVEL retained "
              R"({"value":415,"unit":"m","quality":"good","time":"2026-11-22T09:33:20.125Z"})");
    EXPECT_EQ(told(plain, change(0, 1)), "sbus/north/waterworks/pump-house/RUN retained "
                                         R"({"value":1,"quality":"good","time":"2026-11-22T09:33:20.125Z"})");
}

TEST_F(LayoutTest, HasNoValueOfAPointThatIsNotGood) {
    for (const PointQuality quality : {PointQuality::Bad, PointQuality::Refused, PointQuality::NeverRead})
        EXPECT_THAT(told(plain, change(2, 415, quality)), HasSubstr("{\"value\":null,\"unit\""));
    EXPECT_THAT(told(plain, change(1, std::nan(""))), HasSubstr("{\"value\":null"));
}

TEST_F(LayoutTest, SaysThatTheHostIsThereAndHasTheBrokerSayThatItIsNot) {
    const MqttMessage birth = plain.birth(moment).at(0);
    EXPECT_EQ(birth.topic, "sbus/north/$state");
    EXPECT_EQ(birth.payload, R"({"state":"online","time":"2026-11-22T09:33:20.125Z"})");
    EXPECT_EQ(plain.will(moment).topic, birth.topic);
    EXPECT_EQ(plain.will(moment).payload, R"({"state":"offline"})");
    EXPECT_TRUE(plain.will(moment).isRetained && birth.isRetained);
}

TEST_F(LayoutTest, TellsAtItsEndThatNothingIsKnownOfLinesAndRtus) {
    std::vector<std::string> topics;
    for (const MqttMessage& message : plain.death(moment))
        topics.push_back(message.topic + message.payload.substr(0, 18));
    EXPECT_THAT(topics, ElementsAre("sbus/north/$state{\"state\":\"offline\"",
                                    "sbus/north/waterworks/$state{\"state\":\"unknown\"",
                                    "sbus/north/waterworks/pump-house/$state{\"state\":\"unknown\""));
}

TEST_F(LayoutTest, PutsTheChangesOfAnRtuInARowIntoOneMessage) {
    const ToldChange changes[] = {change(2, 1), change(1, 2.5), change(2, 3, PointQuality::Bad)};
    MqttMessage message;
    EXPECT_EQ(batch.tellChanges(changes, 3, message), 3U);
    EXPECT_EQ(message.topic, "sbus/north/waterworks/pump-house");
    EXPECT_FALSE(message.isRetained);
    EXPECT_EQ(
        message.payload,
        R"({"values":[{"point":"LEVEL","value":1,"unit":"m","quality":"good","time":"2026-11-22T09:33:20.125Z"},)"
        R"({"point":"FLOW","value":2.5,"quality":"good","time":"2026-11-22T09:33:20.125Z"},)"
        R"({"point":"LEVEL","value":null,"unit":"m","quality":"bad","time":"2026-11-22T09:33:20.125Z"}]})");
}

TEST_F(LayoutTest, BeginsAnotherMessageWhereOneIsFull) {
    const std::vector<ToldChange> changes(BatchLayout::mostValues + 500, change(1, 2.5));
    MqttMessage message;
    const std::size_t count = batch.tellChanges(changes.data(), changes.size(), message);
    EXPECT_LT(count, changes.size());
    EXPECT_LT(message.payload.size(), BatchLayout::fullPayload + 200);
}

TEST_F(LayoutTest, BeginsAnotherMessageForAnotherRtu) {
    Site two = smallSite();
    two.channels[0].rtus.push_back(two.channels[0].rtus[0]);
    two.channels[0].rtus[1].id = 8;
    const PointTable table(two);
    BatchLayout layout({"sbus", "north", 1, true}, table);
    const ToldChange changes[] = {change(2, 1), change(3, 1)};
    MqttMessage message;
    EXPECT_EQ(layout.tellChanges(changes, 2, message), 1U);
}

TEST_F(LayoutTest, TakesNoCommandsWithoutLeave) {
    PlainLayout closed({"sbus", "north", 1, false}, points);
    EXPECT_TRUE(closed.subscriptions().empty());
    EXPECT_TRUE(closed.read({"sbus/north/waterworks/pump-house/LEVEL/set", "1"}).commands.empty());
    ASSERT_EQ(plain.subscriptions().size(), 1U);
    EXPECT_EQ(plain.subscriptions().front().filter, "sbus/north/+/+/+/set");
    EXPECT_FALSE(plain.subscriptions().front().wantsRetained);
    EXPECT_EQ(plain.read({"sbus/north/waterworks/pump-house/LEVEL/set", "1"}).commands.size(), 1U);
}

TEST_F(LayoutTest, TakesAValueOrAnObjectWithAnId) {
    for (const char* const payload : {"12", " 12\n", "12.0", "1.2e1", R"({"value":12})",
                                      R"({"value":12,"id":"a"})", R"({"id":7,"value":12})"}) {
        const CommandRequest taken = request(payload);
        EXPECT_EQ(taken.refusal, "") << payload;
        EXPECT_EQ(std::get<SetPoint>(taken.command.action).value, 12) << payload;
    }
    EXPECT_EQ(request(R"({"value":12,"id":"a"})").reply.id, "\"a\"");
    EXPECT_EQ(request(R"({"id":7,"value":12})").reply.id, "7");
}

TEST_F(LayoutTest, RefusesWhatIsNoValue) {
    for (const std::string& payload :
         {std::string(), std::string("x"), std::string("1 2"), std::string("[1]"), std::string("1,2"),
          std::string("nan"), std::string("1e999"), std::string("{}"), std::string(R"({"value":null})"),
          std::string(R"({"value":1,"id":[]})"), std::string(R"({"value":1,"valve":2})"),
          std::string(R"({"value":1)"), std::string(longestSetPayload + 1, '1'), std::string(3, '\0'),
          std::string("\xff\xfe")})
        EXPECT_NE(request(payload).refusal, "") << payload;
}

TEST_F(LayoutTest, RefusesWhatThePointCannotTake) {
    EXPECT_THAT(request("1e30").refusal, HasSubstr("1e"));
    const Topics topics("sbus", "north", points);
    const auto refusal = [&](const std::string& topic, const std::string& payload) {
        return readSetMessage({topic, payload}, topics, points).value().refusal;
    };
    EXPECT_THAT(refusal("sbus/north/waterworks/pump-house/RUN/set", "2"), HasSubstr("0 or 1"));
    EXPECT_THAT(refusal("sbus/north/waterworks/pump-house/NONE/set", "1"), HasSubstr("no point"));
    EXPECT_EQ(refusal("sbus/north/waterworks/pump-house/RUN/set", "on"), "");
}

TEST_F(LayoutTest, RefusesARetainedCommand) {
    MqttMessage message{"sbus/north/waterworks/pump-house/LEVEL/set", "1", 1, true};
    const Topics topics("sbus", "north", points);
    EXPECT_THAT(readSetMessage(message, topics, points)->refusal, HasSubstr("retained"));
    message.payload = "";
    EXPECT_FALSE(readSetMessage(message, topics, points)) << "this is how it is removed";
}

TEST_F(LayoutTest, AnswersBesideTheCommandOrWhereItsSenderWantsIt) {
    MqttMessage message{"sbus/north/waterworks/pump-house/LEVEL/set", R"({"value":1,"id":"a"})"};
    const Topics topics("sbus", "north", points);
    const auto answer = [&] {
        return setResult(*readSetMessage(message, topics, points), {true, "success", {}}).value();
    };
    EXPECT_EQ(answer().topic, message.topic + "/result");
    EXPECT_EQ(answer().payload, R"({"id":"a","ok":true,"result":"success"})");
    EXPECT_FALSE(answer().isRetained);
    message.responseTopic = "scada/answers";
    message.correlation = std::string("\0\1", 2);
    EXPECT_EQ(answer().topic, "scada/answers");
    EXPECT_EQ(answer().correlation, message.correlation);
}

TEST_F(LayoutTest, AnswersNowhereThatIsAValueOrACommand) {
    MqttMessage message{"sbus/north/waterworks/pump-house/LEVEL/set", "1"};
    const Topics topics("sbus", "north", points);
    for (const std::string& topic :
         {std::string("sbus/north/waterworks/pump-house/RUN/set"), std::string("sbus/north/$state"),
          std::string("a/+"), std::string("#"), std::string("$SYS/a"), std::string(2'000, 'a')}) {
        message.responseTopic = topic;
        EXPECT_EQ(readSetMessage(message, topics, points)->reply.topic, message.topic + "/result");
    }
}

TEST(Topics, HaveALevelForEachNameAndNoTwoTheSame) {
    EXPECT_EQ(topicLevel("pump house ä"), "pump house ä");
    EXPECT_EQ(topicLevel("a/b+c#d%e$f"), "a%2Fb%2Bc%23d%25e%24f");
    EXPECT_EQ(topicLevel("%2F"), "%252F");
    EXPECT_EQ(topicLevel("\n"), "%0A");
    EXPECT_EQ(topicLevel(""), "%");
}

TEST(Topics, TellLinesOfTheSameNameApart) {
    Site site = smallSite();
    site.channels.push_back(site.channels[0]);
    site.channels[1].id = 5;
    site.channels[1].rtus[0].name = "other";
    const PointTable points(site);
    const Topics topics("sbus", "north", points);
    EXPECT_EQ(topics.ofLine(site.channels[0]), "sbus/north/waterworks");
    EXPECT_EQ(topics.ofLine(site.channels[1]), "sbus/north/waterworks$5");
}

TEST(Topics, LeadBackToThePoint) {
    Site site = smallSite();
    site.channels[0].rtus[0].points[1].name = "a/b";
    const PointTable points(site);
    const Topics topics("sbus", "north", points);
    for (PointIndex i = 0; i < 3; ++i)
        EXPECT_EQ(topics.findPoint(topics.ofPoint(i)), i);
    EXPECT_EQ(topics.ofPoint(1), "sbus/north/waterworks/pump-house/a%2Fb");
    for (const char* const other : {"", "sbus", "sbus/north/waterworks/pump-house",
                                    "sbus/north/waterworks/x/RUN", "sbus/north/waterworks/pump-house/a/b"})
        EXPECT_FALSE(topics.findPoint(other)) << other;
}
