#include "services/control/Request.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// A line in, a request or its fault out.

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Request good(const char* line) {
    const auto parsed = parseRequest(line);
    if (const auto* const bad = std::get_if<BadRequest>(&parsed)) {
        ADD_FAILURE() << line << ": " << bad->fault;
        return {};
    }
    return std::get<Request>(parsed);
}

BadRequest bad(const QByteArray& line) {
    const auto parsed = parseRequest(line);
    if (std::holds_alternative<Request>(parsed)) {
        ADD_FAILURE() << line.toStdString() << " was taken";
        return {};
    }
    return std::get<BadRequest>(parsed);
}

} // namespace

TEST(ControlRequest, WritesValuesInTheirOrder) {
    const Request request = good(R"({"id":7,"do":"write","values":[{"point":"b/X","value":1.5},)"
                                 R"({"point":"a/Y","value":true},{"point":"a/Z","value":false}]})");
    EXPECT_EQ(request.id, QJsonValue(7));
    const auto& values = std::get<WriteRequest>(request.action).values;
    ASSERT_EQ(values.size(), 3U);
    EXPECT_EQ(values[0].point, "b/X");
    EXPECT_EQ(values[0].value, 1.5);
    EXPECT_EQ(values[1].point, "a/Y");
    EXPECT_EQ(values[1].value, 1);
    EXPECT_EQ(values[2].value, 0);
}

TEST(ControlRequest, NamesRtusOrMeansAll) {
    EXPECT_TRUE(std::get<PollRequest>(good(R"({"do":"poll"})").action).rtus.empty());
    EXPECT_THAT(std::get<PollRequest>(good(R"({"do":"poll","rtus":["a","c/b"]})").action).rtus,
                ElementsAre("a", "c/b"));
    EXPECT_THAT(std::get<TimeSyncRequest>(good(R"({"do":"time-sync","rtus":["a"]})").action).rtus,
                ElementsAre("a"));
    EXPECT_THAT(std::get<WatchRequest>(good(R"({"do":"watch","rtus":["a"]})").action).rtus, ElementsAre("a"));
}

TEST(ControlRequest, TakesATextOrANumberAsId) {
    EXPECT_EQ(good(R"({"do":"status","id":"x"})").id, QJsonValue(QStringLiteral("x")));
    EXPECT_TRUE(good(R"({"do":"status"})").id.isUndefined());
    EXPECT_THAT(bad(R"({"do":"status","id":[1]})").fault, HasSubstr("\"id\""));
    EXPECT_THAT(bad(R"({"do":"status","id":null})").fault, HasSubstr("\"id\""));
}

TEST(ControlRequest, RefusesWhatIsNoJsonObject) {
    for (const char* const line : {"", " ", "rubbish", "{", "{\"do\":\"status\"", "{\"do\":\"status\"}}",
                                   "\xff\xfe", "{'do':'status'}"})
        EXPECT_THAT(bad(line).fault, HasSubstr("no JSON")) << line;
    for (const char* const line : {"[]", "[{\"do\":\"status\"}]"})
        EXPECT_THAT(bad(line).fault, HasSubstr("JSON object")) << line;
    EXPECT_NE(bad("7").fault, "");
    EXPECT_NE(bad("\"status\"").fault, "");
    EXPECT_NE(bad(QByteArray(3, '\0')).fault, "");
    EXPECT_NE(bad(QByteArray(60'000, '[')).fault, "");
}

TEST(ControlRequest, RefusesAnUnknownRequest) {
    EXPECT_THAT(bad(R"({"id":3,"do":"fly"})").fault,
                HasSubstr("unknown request \"fly\"; it is one of write"));
    EXPECT_EQ(bad(R"({"id":3,"do":"fly"})").id, QJsonValue(3));
    EXPECT_THAT(bad(R"({})").fault, HasSubstr("\"do\" is missing"));
    EXPECT_THAT(bad(R"({"do":1})").fault, HasSubstr("\"do\" is missing or no text"));
}

TEST(ControlRequest, RefusesKeysThatItDoesNotKnow) {
    EXPECT_THAT(bad(R"({"do":"poll","rtu":"a"})").fault,
                HasSubstr("unknown key \"rtu\"; allowed here: id, do, rtus"));
    EXPECT_THAT(bad(R"({"do":"status","rtus":["a"]})").fault, HasSubstr("unknown key \"rtus\""));
    EXPECT_THAT(bad(R"({"do":"write","values":[{"point":"a/X","value":1,"unit":"m"}]})").fault,
                HasSubstr("unknown key \"unit\""));
}

TEST(ControlRequest, RefusesValuesOfTheWrongForm) {
    for (const char* const line :
         {R"({"do":"write"})", R"({"do":"write","values":[]})", R"({"do":"write","values":{"a/X":1}})",
          R"({"do":"write","values":[1]})", R"({"do":"write","values":[{"value":1}]})",
          R"({"do":"write","values":[{"point":1,"value":1}]})",
          R"({"do":"write","values":[{"point":"a/X"}]})",
          R"({"do":"write","values":[{"point":"a/X","value":"1"}]})",
          R"({"do":"write","values":[{"point":"a/X","value":null}]})"})
        EXPECT_NE(bad(line).fault, "") << line;
}

TEST(ControlRequest, RefusesListsOfTheWrongForm) {
    for (const char* const line : {R"({"do":"poll","rtus":"a"})", R"({"do":"poll","rtus":[]})",
                                   R"({"do":"poll","rtus":[1]})", R"({"do":"watch","rtus":null})"})
        EXPECT_THAT(bad(line).fault, HasSubstr("\"rtus\"")) << line;
}

TEST(ControlRequest, RefusesMoreValuesThanItsLimit) {
    const QByteArray value = R"({"point":"a/X","value":1},)";
    const auto request = [&](int count) {
        QByteArray values = value.repeated(count);
        values.chop(1);
        return "{\"do\":\"write\",\"values\":[" + values + "]}";
    };
    EXPECT_TRUE(std::holds_alternative<Request>(parseRequest(request(mostWriteValues))));
    EXPECT_THAT(bad(request(mostWriteValues + 1)).fault, HasSubstr("more than 500 values"));
}

TEST(ControlRequest, IsReadAsItWasWritten) {
    const WriteRequest write{{{"a/X", 1}, {"a/Y", -2.5}}};
    const Request again = good(requestLine({QJsonValue(QStringLiteral("k")), write}));
    EXPECT_EQ(again.id, QJsonValue(QStringLiteral("k")));
    EXPECT_EQ(std::get<WriteRequest>(again.action).values[1].value, -2.5);
    EXPECT_EQ(requestLine({QJsonValue::Undefined, StatusRequest{}}), R"({"do":"status"})");
    EXPECT_EQ(requestLine({QJsonValue::Undefined, PollRequest{{"a"}}}), R"({"do":"poll","rtus":["a"]})");
    EXPECT_EQ(requestLine({QJsonValue::Undefined, TimeSyncRequest{}}), R"({"do":"time-sync"})");
    EXPECT_EQ(requestLine({QJsonValue::Undefined, WatchRequest{}}), R"({"do":"watch"})");
}
