#include "PumpHouse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint64_t now = EdgeNode::now;

// "NBIRTH 0 [bdSeq=42 Node Control/Rebirth=0]", with the kind, the sequence number where there is one, and of
// each metric its name or alias, value and quality; "h" marks a historical one.
std::string shown(const SparkplugMetric& metric) {
    std::string text = metric.name.empty() ? "#" + std::to_string(metric.alias.value_or(99)) : metric.name;
    text += '=';
    if (!metric.value)
        text += "null";
    else if (const bool* flag = std::get_if<bool>(&*metric.value))
        text += *flag ? "on" : "off";
    else if (const std::int64_t* whole = std::get_if<std::int64_t>(&*metric.value))
        text += std::to_string(*whole);
    else if (const double* number = std::get_if<double>(&*metric.value))
        text += std::to_string(*number);
    return text + (metric.isHistorical ? "h" : "");
}

std::string shown(const SparkplugMessage& message) {
    const std::string space = "spBv1.0/sbus/";
    EXPECT_EQ(message.topic.substr(0, space.size()), space);
    const std::string kind = message.topic.substr(space.size());
    const SparkplugPayload payload = decodeSparkplug(message.payload).value_or(SparkplugPayload());
    std::string text = kind;
    if (payload.sequence)
        text += " " + std::to_string(*payload.sequence);
    for (const SparkplugMetric& metric : payload.metrics)
        text += " " + shown(metric);
    return text;
}

std::vector<std::string> shown(const SparkplugMessages& messages) {
    std::vector<std::string> texts;
    for (const SparkplugMessage& message : messages)
        texts.push_back(shown(message));
    return texts;
}

std::string online(std::uint64_t timeMs) {
    return R"({"online":true,"timestamp":)" + std::to_string(timeMs) + "}";
}
std::string offline(std::uint64_t timeMs) {
    return R"({"online":false,"timestamp":)" + std::to_string(timeMs) + "}";
}

std::vector<std::string> kinds(const SparkplugMessages& messages) {
    std::vector<std::string> all;
    for (const SparkplugMessage& message : messages) {
        const std::string rest = message.topic.substr(std::string("spBv1.0/sbus/").size());
        all.push_back(rest.substr(0, rest.find('/')));
    }
    return all;
}

// Two living devices, behind what was kept.
void bearAll(EdgeNode& node) {
    node.session.deviceReturned(0, now);
    node.session.deviceReturned(1, now);
    node.session.beginConnection(now);
    node.session.connected(now); // 0 to 2
    EXPECT_THAT(node.session.caughtUp(now), IsEmpty());
}

std::string orderFor(const SparkplugMetric& metric) {
    return encodeSparkplug({now, std::nullopt, {metric}});
}

SparkplugMetric named(const std::string& name, SparkplugType type, SparkplugValue value) {
    SparkplugMetric metric;
    metric.name = name;
    metric.type = type;
    metric.value = std::move(value);
    return metric;
}

} // namespace

TEST(SparkplugSession, LeavesAWillWithTheNextNumberAndGivesItAtBirth) {
    EdgeNode node;
    const SparkplugMessage will = node.session.beginConnection(now);
    EXPECT_EQ(shown(will), "NDEATH/north bdSeq=42");
    EXPECT_EQ(will.qos, 1);
    EXPECT_EQ(node.session.birthDeathSequence(), 42);
    EXPECT_THAT(shown(node.session.connected(now)),
                ElementsAre("NBIRTH/north 0 bdSeq=42 Node Control/Rebirth=off",
                            "DBIRTH/north/waterworks.pumps 1 RUN=null STARTS=null LEVEL=null",
                            "DBIRTH/north/waterworks.well 2 FLOW=null"));
}

TEST(SparkplugSession, CountsConnectionsUpTo255AndOnFrom0) {
    EdgeNode node("", 255);
    EXPECT_EQ(shown(node.session.beginConnection(now)), "NDEATH/north bdSeq=0");
    EXPECT_EQ(shown(node.session.beginConnection(now)), "NDEATH/north bdSeq=1");
}

TEST(SparkplugSession, CarriesTheValuesOfEachKindOfPoint) {
    EdgeNode node;
    node.change(0, 1);
    node.change(1, -70'000);
    node.change(2, 385);
    node.change(3, 1.5);
    node.session.beginConnection(now);
    EXPECT_THAT(shown(node.session.connected(now)),
                ElementsAre("NBIRTH/north 0 bdSeq=42 Node Control/Rebirth=off",
                            "DBIRTH/north/waterworks.pumps 1 RUN=on STARTS=-70000 LEVEL=3.850000",
                            "DBIRTH/north/waterworks.well 2 FLOW=1.500000"));
}

TEST(SparkplugSession, SendsWhatHasChangedByAliasInOrder) {
    EdgeNode node;
    node.session.beginConnection(now);
    node.session.connected(now);
    EXPECT_THAT(
        shown(node.session.data(
            {node.change(1, 5), node.change(0, 1), node.change(3, 2.5), node.change(1, 6)}, false, now)),
        ElementsAre("DDATA/north/waterworks.pumps 3 #1=5 #0=on", "DDATA/north/waterworks.well 4 #3=2.500000",
                    "DDATA/north/waterworks.pumps 5 #1=6"));
}

TEST(SparkplugSession, CountsMessagesUpTo255AndOnFrom0) {
    EdgeNode node;
    node.session.beginConnection(now);
    node.session.connected(now); // 0 to 2
    for (int i = 3; i < 255; ++i)
        node.session.data({node.change(3, i)}, false, now);
    EXPECT_THAT(shown(node.session.data({node.change(3, 1)}, false, now)),
                ElementsAre("DDATA/north/waterworks.well 255 #3=1.000000"));
    EXPECT_THAT(shown(node.session.data({node.change(3, 2)}, false, now)),
                ElementsAre("DDATA/north/waterworks.well 0 #3=2.000000"));
}

TEST(SparkplugSession, MarksWhatWasKept) {
    EdgeNode node;
    node.session.beginConnection(now);
    node.session.connected(now);
    EXPECT_THAT(shown(node.session.data({node.change(1, 5)}, true, now)),
                ElementsAre("DDATA/north/waterworks.pumps 3 #1=5h"));
}

TEST(SparkplugSession, SendsNothingWhileItIsNotBorn) {
    EdgeNode node("scada");
    const std::vector<PointChange> changes{node.change(1, 5)};
    EXPECT_THAT(node.session.data(changes, false, now), IsEmpty());
    node.session.beginConnection(now);
    EXPECT_THAT(node.session.connected(now), IsEmpty());
    EXPECT_THAT(node.session.data(changes, false, now), IsEmpty());
    EXPECT_THAT(node.session.deviceDied(0, now), IsEmpty());
    EXPECT_THAT(node.session.deviceReturned(0, now), IsEmpty());
    EXPECT_THAT(node.session.rebirth(now), IsEmpty());
    EXPECT_THAT(node.session.caughtUp(now), IsEmpty());
}

TEST(SparkplugSession, TellsEachMetricsQualityAtARebirth) {
    EdgeNode node;
    node.change(0, 1);
    node.change(1, 5);
    node.session.beginConnection(now);
    node.session.connected(now);
    node.session.data({node.change(1, 0, PointQuality::Bad)}, false, now);
    const SparkplugMessages messages = node.session.rebirth(now);
    ASSERT_GE(messages.size(), 2U);
    EXPECT_EQ(shown(messages[0]),
              "NBIRTH/north 0 bdSeq=42 Node Control/Rebirth=off"); // the connection is the same
    EXPECT_EQ(shown(messages[1]), "DBIRTH/north/waterworks.pumps 1 RUN=on STARTS=null LEVEL=null");
}

TEST(SparkplugSession, WaitsForThePrimaryHost) {
    EdgeNode node("scada");
    EXPECT_THAT(node.session.subscriptions(),
                ElementsAre("spBv1.0/sbus/NCMD/north", "spBv1.0/sbus/DCMD/north/#", "spBv1.0/STATE/scada"));
    node.session.beginConnection(now);
    EXPECT_THAT(node.session.connected(now), IsEmpty());
    EXPECT_FALSE(node.session.isBorn());
    EXPECT_THAT(kinds(node.session.hostSaid(online(1000), now)), ElementsAre("NBIRTH", "DBIRTH", "DBIRTH"));
    EXPECT_TRUE(node.session.isBorn());
}

TEST(SparkplugSession, DiesWhenThePrimaryHostHasGoneAndIsBornWithTheNextConnection) {
    EdgeNode node("scada");
    node.session.beginConnection(now);
    node.session.connected(now);
    node.session.hostSaid(online(1000), now);
    EXPECT_THAT(shown(node.session.hostSaid(offline(1000), now)), ElementsAre("NDEATH/north bdSeq=42"));
    EXPECT_FALSE(node.session.isBorn());
    node.session.disconnected();
    EXPECT_EQ(shown(node.session.beginConnection(now)), "NDEATH/north bdSeq=43");
    node.session.connected(now);
    EXPECT_THAT(node.session.hostSaid(offline(1000), now), IsEmpty()); // retained, and no news
    EXPECT_THAT(kinds(node.session.hostSaid(online(2000), now)), ElementsAre("NBIRTH", "DBIRTH", "DBIRTH"));
}

TEST(SparkplugSession, DoesNotListenToAWordThatComesLate) {
    EdgeNode node("scada");
    node.session.beginConnection(now);
    node.session.connected(now);
    node.session.hostSaid(online(2000), now);
    EXPECT_THAT(node.session.hostSaid(offline(1999), now), IsEmpty()); // the will of the host's last session
    EXPECT_TRUE(node.session.isBorn());
    EXPECT_THAT(node.session.hostSaid(online(2000), now), IsEmpty()); // born already
    EXPECT_THAT(kinds(node.session.hostSaid(offline(2000), now)), ElementsAre("NDEATH"));
}

TEST(SparkplugSession, DoesNotTakeOtherTextsForAHost) {
    EdgeNode node("scada");
    node.session.beginConnection(now);
    node.session.connected(now);
    for (const char* const text :
         {"ONLINE", "", "{}", "[]", R"({"online":true})", R"({"timestamp":1})",
          R"({"online":"true","timestamp":1})", R"({"online":true,"timestamp":"1"})",
          R"({"online":true,"timestamp":-1})", R"({"online":true,"timestamp":1e300})"})
        EXPECT_THAT(node.session.hostSaid(text, now), IsEmpty()) << text;
    EXPECT_FALSE(node.session.isBorn());
}

TEST(SparkplugSession, SaysThatADeviceHasDiedAndThatItIsBack) {
    EdgeNode node;
    bearAll(node);
    node.session.data({node.change(3, 1)}, false, now); // 3
    EXPECT_THAT(shown(node.session.deviceDied(1, now)), ElementsAre("DDEATH/north/waterworks.well 4"));
    EXPECT_THAT(node.session.deviceDied(1, now), IsEmpty());
    EXPECT_THAT(node.session.data({node.change(3, 0, PointQuality::Bad)}, false, now), IsEmpty());
    EXPECT_THAT(shown(node.session.deviceReturned(1, now)),
                ElementsAre("DBIRTH/north/waterworks.well 5 FLOW=null")); // it has not been read since
    EXPECT_THAT(node.session.deviceReturned(1, now), IsEmpty());
}

TEST(SparkplugSession, TakesADeviceThatBringsAGoodValueForAlive) {
    EdgeNode node;
    bearAll(node);
    node.session.deviceDied(1, now);
    EXPECT_THAT(shown(node.session.data({node.change(3, 7)}, false, now)),
                ElementsAre("DBIRTH/north/waterworks.well 4 FLOW=7.000000"));
    EXPECT_THAT(node.session.caughtUp(now), IsEmpty());
}

// What was kept of a device goes out before it is said to be dead.
TEST(SparkplugSession, BearsDeadDevicesForWhatWasKeptOfThem) {
    EdgeNode node;
    node.session.deviceDied(1, now);
    node.session.deviceReturned(0, now);
    node.session.beginConnection(now);
    EXPECT_THAT(kinds(node.session.connected(now)), ElementsAre("NBIRTH", "DBIRTH", "DBIRTH"));
    EXPECT_THAT(node.session.deviceDied(1, now), IsEmpty());
    EXPECT_THAT(kinds(node.session.data({node.change(3, 7)}, true, now)), ElementsAre("DDATA"));
    EXPECT_THAT(shown(node.session.caughtUp(now)), ElementsAre("DDEATH/north/waterworks.well 4"));
    EXPECT_THAT(node.session.caughtUp(now), IsEmpty());
}

TEST(SparkplugSession, TakesARebirthForOneOnlyWhenItIsAskedFor) {
    const EdgeNode node;
    const std::string topic = "spBv1.0/sbus/NCMD/north";
    EXPECT_TRUE(
        node.session.orderOf(topic, orderFor(named("Node Control/Rebirth", SparkplugType::Boolean, true)))
            .isRebirth);
    EXPECT_FALSE(
        node.session.orderOf(topic, orderFor(named("Node Control/Rebirth", SparkplugType::Boolean, false)))
            .isRebirth);
    EXPECT_FALSE(
        node.session.orderOf(topic, orderFor(named("Node Control/Reboot", SparkplugType::Boolean, true)))
            .isRebirth);
}

TEST(SparkplugSession, FindsThePointsOfACommandByNameAndByAlias) {
    const EdgeNode node;
    const std::string topic = "spBv1.0/sbus/DCMD/north/waterworks.pumps";
    SparkplugMetric byAlias = named("", SparkplugType::Int32, std::int64_t{-5});
    byAlias.alias = 1;
    const SparkplugOrder order = node.session.orderOf(
        topic, encodeSparkplug({now, std::nullopt, {named("RUN", SparkplugType::Boolean, true), byAlias}}));
    EXPECT_THAT(order.faults, IsEmpty());
    EXPECT_THAT(order.values, ElementsAre(std::pair(PointIndex{0}, SparkplugValue(true)),
                                          std::pair(PointIndex{1}, SparkplugValue(std::int64_t{-5}))));
}

TEST(SparkplugSession, TellsWhatItDoesNotUnderstandOfACommand) {
    const EdgeNode node;
    const std::string pumps = "spBv1.0/sbus/DCMD/north/waterworks.pumps";
    SparkplugMetric otherDevices = named("", SparkplugType::Double, 1.0);
    otherDevices.alias = 3;
    SparkplugMetric nothing = named("RUN", SparkplugType::Boolean, true);
    nothing.value.reset();
    EXPECT_THAT(node.session.orderOf(pumps, "\x07 no payload").faults,
                ElementsAre("the message on " + pumps + " is no payload of Sparkplug B"));
    EXPECT_THAT(node.session.orderOf(pumps, orderFor(otherDevices)).faults,
                ElementsAre("waterworks.pumps has no metric alias 3"));
    EXPECT_THAT(node.session.orderOf(pumps, orderFor(named("FLOW", SparkplugType::Double, 1.0))).faults,
                ElementsAre("waterworks.pumps has no metric FLOW"));
    EXPECT_THAT(node.session.orderOf(pumps, orderFor(nothing)).faults,
                ElementsAre("waterworks.pumps/RUN is to have no value"));
    EXPECT_THAT(node.session.orderOf("spBv1.0/sbus/DCMD/north/other", orderFor(otherDevices)).faults,
                ElementsAre("the topic spBv1.0/sbus/DCMD/north/other is of no device"));
}

TEST(SparkplugNames, KeepRtusApartWhateverTheyAreCalled) {
    const auto device = [](const std::string& line, const std::string& rtu) {
        Site site = pumpHouse();
        site.channels[0].name = line;
        site.channels[0].rtus[0].name = rtu;
        return sparkplugDevices(PointTable(site)).front();
    };
    EXPECT_EQ(device("a.b", "c"), "a%2Eb.c");
    EXPECT_EQ(device("a", "b.c"), "a.b.c");
    EXPECT_EQ(device("1/2 100%", "+#"), "1%2F2 100%25.%2B%23");
}

TEST(SparkplugNames, KeepLinesOfOneNameApart) {
    Site site = pumpHouse();
    site.channels.push_back(site.channels[0]);
    site.channels[1].id = 2;
    EXPECT_THAT(sparkplugDevices(PointTable(site)), ElementsAre("waterworks.pumps", "waterworks.well",
                                                                "waterworks$2.pumps", "waterworks$2.well"));
}
