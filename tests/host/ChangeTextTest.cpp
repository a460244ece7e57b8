#include "values/ChangeText.h"
#include "SmallSite.h"
#include "values/ValueText.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using host::PointRef;
using host::PointState;

namespace {

constexpr qint64 readAt = 1'700'000'000'125; // 2023-11-14T22:13:20.125Z

class ChangeText : public testing::Test {
protected:
    PointRef ref(std::size_t index) const {
        const host::Channel& channel = site.channels[0];
        return {&channel, &channel.rtus[0], &channel.rtus[0].points[index]};
    }

    static PointState good(double value) { return {value, readAt, readAt, PointQuality::Good}; }

    static std::string written(const std::unique_ptr<host::ChangeText>& changeText, const PointRef& ref,
                               const PointState& state) {
        std::string text;
        changeText->append(text, ref, state);
        return text;
    }

    host::Site site = smallSite();
};

} // namespace

TEST_F(ChangeText, WritesWholeNumbersPlainly) {
    const host::Point& integer = *ref(2).point;
    EXPECT_EQ(valueText(integer, 0), "0");
    EXPECT_EQ(valueText(integer, 1'000'000), "1000000");
    EXPECT_EQ(valueText(integer, 4'294'967'295.0), "4294967295");
    EXPECT_EQ(valueText(integer, -2'147'483'648.0), "-2147483648");
}

TEST_F(ChangeText, WritesFloatsShortAndExact) {
    const host::Point& flow = *ref(1).point;
    EXPECT_EQ(valueText(flow, static_cast<double>(0.1F)), "0.1");
    EXPECT_EQ(valueText(flow, 1.5), "1.5");
    EXPECT_EQ(valueText(flow, 3), "3");
    for (const float value :
         {1.17549435e-38F, 3.4028235e38F, 9.2233715e18F, -0.33333334F, 16777216.0F, 12345.678F})
        EXPECT_EQ(std::stof(valueText(flow, static_cast<double>(value))), value);
}

TEST_F(ChangeText, IsOneJsonObject) {
    EXPECT_EQ(written(host::makeJsonText(), ref(1), good(1.5)),
              R"({"time":"2023-11-14T22:13:20.125Z","channel":"waterworks","rtu":"pump-house","id":2,)"
              R"("name":"FLOW","address":"R100","value":1.5,"quality":"good"})");
}

TEST_F(ChangeText, IsValidJsonWhateverTheNames) {
    site.channels[0].name = "a\"b\\c\n\x01 Br\xC3\xBC"
                            "cke";
    const QByteArray json = QByteArray::fromStdString(
        written(host::makeJsonText(), ref(0), good(std::numeric_limits<double>::infinity())));
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    EXPECT_EQ(object.value(QStringLiteral("channel")).toString().toStdString(), site.channels[0].name);
    EXPECT_TRUE(object.value(QStringLiteral("value")).isNull());
}

TEST_F(ChangeText, IsOneCsvRow) {
    site.channels[0].rtus[0].points[0].name = "RUN, \"1\"";
    EXPECT_EQ(written(host::makeCsvText(), ref(0), {1, readAt, readAt, PointQuality::Bad}),
              "2023-11-14T22:13:20.125Z,waterworks,pump-house,1,\"RUN, \"\"1\"\"\",O32,1,bad,");
}

TEST_F(ChangeText, IsOneLineForPeople) {
    EXPECT_THAT(written(host::makeLineText(), ref(2), good(12)),
                testing::EndsWith("  pump-house/LEVEL (R101) = 12  good"));
}

// What is kept from one change to the next must not show in another RTU's or another second's.
TEST_F(ChangeText, KeepsTimesAndRtusOfFollowingChangesApart) {
    host::Rtu second = site.channels[0].rtus[0];
    second.name = "tank";
    site.channels[0].rtus.push_back(second);
    const PointRef run = ref(0);
    const PointRef tankRun{run.channel, &site.channels[0].rtus[1], &site.channels[0].rtus[1].points[0]};
    const auto csv = host::makeCsvText();
    std::string text;
    for (const auto& [which, milliseconds] :
         {std::pair(run, 999), {tankRun, 999}, {run, 1'000}, {run, 7}, {tankRun, 59'999}, {run, 60'000}}) {
        csv->append(text, which, {1, milliseconds, milliseconds, PointQuality::Good});
        text += '\n';
    }
    EXPECT_EQ(text, "1970-01-01T00:00:00.999Z,waterworks,pump-house,1,RUN,O32,1,good,\n"
                    "1970-01-01T00:00:00.999Z,waterworks,tank,1,RUN,O32,1,good,\n"
                    "1970-01-01T00:00:01.000Z,waterworks,pump-house,1,RUN,O32,1,good,\n"
                    "1970-01-01T00:00:00.007Z,waterworks,pump-house,1,RUN,O32,1,good,\n"
                    "1970-01-01T00:00:59.999Z,waterworks,tank,1,RUN,O32,1,good,\n"
                    "1970-01-01T00:01:00.000Z,waterworks,pump-house,1,RUN,O32,1,good,\n");
}

TEST(TimeText, IsThatOfItsMillisecondAlsoBefore1970) {
    host::TimeText utc(host::utcTimeText);
    for (const qint64 milliseconds : {readAt, readAt + 874, readAt + 875, readAt - 126, qint64{-1},
                                      qint64{-1'000}, qint64{-1'001}, qint64{0}, qint64{999}})
        EXPECT_EQ(utc.of(milliseconds), host::utcTimeText(milliseconds));
}

// The second behind which clocks are set forward, where the tests' computer is in such a zone.
TEST(TimeText, FollowsTheLocalClockAcrossAChangeOfItsOffset) {
    host::TimeText local(host::localTimeText);
    const qint64 change = 1'711'846'800'000; // 2024-03-31T01:00:00Z
    for (const qint64 milliseconds : {change - 1, change, change + 3'600'000, change - 1})
        EXPECT_EQ(local.of(milliseconds), host::localTimeText(milliseconds));
}
