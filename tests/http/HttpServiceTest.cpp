#include "services/http/HttpService.h"

#include "RawClient.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class NoCommands : public host::CommandTaker {
public:
    std::string submit(const host::Command&, host::CommandDone) override { return "none here"; }
};

// A site of one line, whose figures are the test's, with its HTTP server.
class HttpServiceTest : public testing::Test {
protected:
    HttpServiceTest() {
        site.name = "north";
        host::Channel& channel = site.channels.emplace_back();
        channel.id = 4;
        channel.name = "waterworks";
        host::Rtu& rtu = channel.rtus.emplace_back();
        rtu.id = 7;
        rtu.name = "pump-house";
        rtu.points.emplace_back().name = "RUN";
        values.emplace(site);
        figures.channels.push_back({&channel, {}, {}});
        figures.rtus.emplace_back();
        figures.rtus.back().channel = &channel;
        figures.rtus.back().rtu = &rtu;
        settings.listen = {"127.0.0.1", 0, {}};
    }

    std::string start() {
        running.emplace(host::RunningSite{site, *values, exchanges, commands, messages,
                                          [this] {
                                              const std::lock_guard<std::mutex> lock(mutex);
                                              return figures;
                                          },
                                          [](int, int) { return Halvex::DriverErrorResult::Success; }});
        service.emplace(settings);
        return service->start(*running);
    }

    void endFirstPoll() {
        const std::lock_guard<std::mutex> lock(mutex);
        figures.rtus[0].status.requests = 1;
    }

    std::string ask(const std::string& path, const std::string& headers = {}) const {
        RawClient client(service->port());
        client.send(get(path, headers));
        return client.readAnswer();
    }

    void usePassword(QFile::Permissions permissions) {
        const QString path = folder.filePath(QStringLiteral("password"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("open sesame\n");
        file.setPermissions(permissions);
        settings.password = host::SecretSource{path.toStdString(), {}, {}};
    }

    const QTemporaryDir folder;
    host::Site site;
    std::optional<host::ValueStore> values;
    host::ExchangeFeed exchanges;
    NoCommands commands;
    host::Messages messages;
    std::mutex mutex; // guards the figures
    host::SiteFigures figures;
    host::HttpSettings settings;
    std::optional<host::RunningSite> running;
    std::optional<host::HttpService> service;
};

} // namespace

TEST_F(HttpServiceTest, SaysWhereItsMetricsAre) {
    ASSERT_EQ(start(), "");
    EXPECT_THAT(messages.take(), testing::ElementsAre("metrics at http://127.0.0.1:" +
                                                      std::to_string(service->port()) + "/metrics"));
}

TEST_F(HttpServiceTest, IsReadyOnceTheFirstPollOfEachLineHasEnded) {
    ASSERT_EQ(start(), "");
    EXPECT_THAT(ask("/healthz"), StartsWith("HTTP/1.1 200"));
    EXPECT_THAT(ask("/readyz"), AllOf(StartsWith("HTTP/1.1 503"),
                                      EndsWith("channel 4 \"waterworks\": its first poll has not ended\n")));
    endFirstPoll();
    EXPECT_THAT(ask("/readyz"), StartsWith("HTTP/1.1 200"));
}

TEST_F(HttpServiceTest, StaysReadyWhenALineIsLost) {
    site.channels[0].rtus[0].enabled = false; // such a line is awaited until it is open
    ASSERT_EQ(start(), "");
    EXPECT_THAT(ask("/readyz"), StartsWith("HTTP/1.1 503"));
    for (const bool isOpen : {true, false}) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            figures.channels[0].status.connected = isOpen;
        }
        EXPECT_THAT(ask("/readyz"), StartsWith("HTTP/1.1 200"));
    }
}

TEST_F(HttpServiceTest, WritesTheFormatThatIsAskedFor) {
    ASSERT_EQ(start(), "");
    EXPECT_THAT(ask("/metrics"),
                AllOf(HasSubstr("Content-Type: text/plain; version=0.0.4; charset=utf-8\r\n"),
                      HasSubstr("# TYPE sbus_rtu_requests_total counter\n"), Not(HasSubstr("# EOF"))));
    EXPECT_THAT(
        ask("/metrics", "Accept: application/openmetrics-text;version=1.0.0\r\n"),
        AllOf(HasSubstr("Content-Type: application/openmetrics-text; version=1.0.0; charset=utf-8\r\n"),
              HasSubstr("# TYPE sbus_rtu_requests counter\n"), EndsWith("# EOF\n")));
}

TEST_F(HttpServiceTest, HoldsPointsWhereTheyAreAskedFor) {
    ASSERT_EQ(start(), "");
    EXPECT_THAT(ask("/metrics"), Not(HasSubstr("sbus_point_")));
    settings.hasPoints = true;
    ASSERT_EQ(start(), "");
    EXPECT_THAT(ask("/metrics"), HasSubstr("sbus_point_good{site=\"north\",channel=\"waterworks\","
                                           "rtu=\"pump-house\",point=\"RUN\"} 0\n"));
}

TEST_F(HttpServiceTest, GivesMetricsToWhoHasThePasswordAlone) {
    usePassword(QFile::ReadOwner | QFile::WriteOwner);
    ASSERT_EQ(start(), "");
    EXPECT_THAT(ask("/metrics"), AllOf(StartsWith("HTTP/1.1 401"), HasSubstr("WWW-Authenticate: Basic"),
                                       Not(HasSubstr("sbus_"))));
    EXPECT_THAT(ask("/metrics", "Authorization: Bearer open\r\n"), StartsWith("HTTP/1.1 401"));
    EXPECT_THAT(ask("/metrics", "Authorization: Bearer open sesame\r\n"), StartsWith("HTTP/1.1 200"));
    EXPECT_THAT(ask("/healthz"), StartsWith("HTTP/1.1 200")) << "who supervises the process has none";
}

TEST_F(HttpServiceTest, DoesNotStartWithAPasswordThatOthersCanRead) {
    usePassword(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    EXPECT_THAT(start(), AllOf(StartsWith("[http] has no password: "), HasSubstr("chmod 600")));
    host::Findings findings;
    checkHttpFiles(settings, findings);
    ASSERT_EQ(findings.all().size(), 1U);
    EXPECT_THAT(findings.all()[0].what, HasSubstr("can be read or changed by other users"));
}

TEST_F(HttpServiceTest, TellsItsFigures) {
    ASSERT_EQ(start(), "");
    ask("/healthz");
    const std::vector<host::ServiceFigure> told = service->figures();
    ASSERT_EQ(told.size(), 4U);
    EXPECT_EQ(told[1].name, "requests");
    EXPECT_EQ(told[1].value, 1U);
}
