#include "services/http/HttpServer.h"

#include "Eventually.h"
#include "RawClient.h"
#include "Sanitized.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <atomic>
#include <random>

using host::HttpRequest;
using host::HttpServer;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

const host::ListenAddress anyPort{"127.0.0.1", 0, {}};
constexpr std::size_t largePage = 64'000'000; // more than a system keeps for a client that does not read

class Server {
public:
    explicit Server(HttpServer::Settings settings = {},
                    const std::optional<HttpServer::Identity>& identity = {})
        : server(settings, answer) {
        EXPECT_EQ(server.start(anyPort, identity), "");
    }

    std::uint16_t port() const { return server.port(); }
    HttpServer::Figures figures() const { return server.figures(); }
    void stop() { server.stop(); }

    // Asked on a connection of its own.
    std::string ask(const std::string& bytes) const {
        RawClient client(port());
        client.send(bytes);
        return client.readAnswer();
    }
    bool isAlive() const { return bodyOf(ask(get("/alive"))) == "/alive"; }

private:
    static host::HttpResponse answer(const HttpRequest& request) {
        if (request.path == "/large")
            return host::textResponse(200, std::string(largePage, 'x'));
        return host::textResponse(
            200, request.path + (request.query.empty() ? "" : " asks " + request.query) + request.body);
    }

    HttpServer server;
};

HttpServer::Settings withClients(std::size_t clients) {
    HttpServer::Settings settings;
    settings.clients = clients;
    return settings;
}

} // namespace

TEST(HttpServer, AnswersOneRequestAfterTheOtherOnAConnection) {
    const Server server;
    RawClient client(server.port());
    client.send(get("/first?a=1"));
    EXPECT_THAT(client.readAnswer(),
                AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), EndsWith("\r\n\r\n/first asks a=1"),
                      HasSubstr("X-Content-Type-Options: nosniff\r\n"),
                      HasSubstr("Cache-Control: no-store\r\n")));
    client.send(get("/second"));
    EXPECT_EQ(bodyOf(client.readAnswer()), "/second");
    EXPECT_EQ(server.figures().clients, 1U);
    EXPECT_EQ(server.figures().requests, 2U);
}

TEST(HttpServer, AnswersRequestsThatComeTogetherInTheirOrder) {
    const Server server;
    RawClient client(server.port());
    client.send(get("/first") + "POST /second HTTP/1.1\r\nContent-Length: 5\r\n\r\n body" + get("/third"));
    EXPECT_EQ(bodyOf(client.readAnswer()), "/first");
    EXPECT_EQ(bodyOf(client.readAnswer()), "/second body");
    EXPECT_EQ(bodyOf(client.readAnswer()), "/third");
}

TEST(HttpServer, AnswersARequestThatComesByteByByte) {
    const Server server;
    RawClient client(server.port());
    for (const char byte : get("/slow"))
        client.send(std::string(1, byte));
    EXPECT_EQ(bodyOf(client.readAnswer()), "/slow");
}

TEST(HttpServer, SendsTheHeadAloneWhereItIsAskedFor) {
    const Server server;
    RawClient client(server.port());
    client.send("HEAD /page HTTP/1.1\r\nHost: h\r\n\r\n" + get("/next"));
    EXPECT_THAT(client.readAnswer(false),
                AllOf(StartsWith("HTTP/1.1 200"), HasSubstr("Content-Length: 5\r\n")));
    EXPECT_EQ(bodyOf(client.readAnswer()), "/next");
}

TEST(HttpServer, ClosesTheConnectionWhenTheClientDoesNotKeepIt) {
    const Server server;
    for (const char* const request :
         {"GET / HTTP/1.0\r\n\r\n", "GET / HTTP/1.1\r\nConnection: close\r\n\r\n"}) {
        RawClient client(server.port());
        client.send(request);
        EXPECT_THAT(client.readToEnd(), EndsWith("\r\n\r\n/"));
        EXPECT_TRUE(client.isClosed());
    }
}

TEST(HttpServer, TellsWhatIsWrongWithARequest) {
    const Server server;
    const std::string longHeader = "GET / HTTP/1.1\r\nX: " + std::string(100'000, 'x') + "\r\n\r\n";
    const std::string longBody =
        "POST / HTTP/1.1\r\nContent-Length: 100000\r\n\r\n" + std::string(100'000, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"nonsense\r\n\r\n", "400 Bad Request"},
        {"GET / HTTP/9.9\r\n\r\n", "400 Bad Request"},
        {std::string(3, '\0') + "\r\n\r\n", "400 Bad Request"},
        {longHeader, "431 Request Header Fields Too Large"},
        {longBody, "413 Payload Too Large"}};
    std::uint64_t asked = 0;
    for (const auto& [request, status] : cases) {
        RawClient client(server.port());
        client.send(request);
        EXPECT_THAT(client.readToEnd(),
                    AllOf(StartsWith("HTTP/1.1 " + status), HasSubstr("Connection: close")));
        EXPECT_EQ(server.figures().unreadable, ++asked);
    }
    EXPECT_EQ(server.figures().requests, 0U);
    EXPECT_TRUE(server.isAlive());
}

TEST(HttpServer, SurvivesRubbish) {
    constexpr int rounds = isSanitized ? 200 : 1'000;
    const Server server;
    std::mt19937 random(15); // NOLINT: the same rubbish each time
    const std::string sound =
        "POST /page?x HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nbody\r\n0\r\n\r\n";
    for (int round = 0; round < rounds; ++round) {
        std::string rubbish = sound;
        for (int change = 0; change < 1 + round % 8; ++change)
            rubbish[random() % rubbish.size()] = static_cast<char>(random() % 256);
        RawClient client(server.port());
        client.send(rubbish.substr(0, random() % (rubbish.size() + 1)));
    }
    EXPECT_TRUE(server.isAlive());
    EXPECT_TRUE(eventually([&server] { return server.figures().clients == 0; })) << "all have been let go";
}

TEST(HttpServer, LetsGoOfAClientThatIsSlowWithItsRequest) {
    HttpServer::Settings settings;
    settings.requestTime = 200ms;
    const Server server(settings);
    RawClient client(server.port());
    client.send("GET / HTTP/1.1\r\nHost: ");
    EXPECT_TRUE(client.isClosedInSilence());
    EXPECT_TRUE(eventually([&server] { return server.figures().unreadable == 1; }));
    EXPECT_TRUE(server.isAlive());
}

TEST(HttpServer, LetsGoOfAClientThatAsksNothing) {
    HttpServer::Settings settings;
    settings.idleTime = 200ms;
    const Server server(settings);
    RawClient client(server.port());
    EXPECT_TRUE(client.isClosedInSilence());
    EXPECT_TRUE(eventually([&server] { return server.figures().clients == 0; }));
}

TEST(HttpServer, LetsGoOfAClientThatDoesNotReadAndAnswersOthersMeanwhile) {
    HttpServer::Settings settings;
    settings.answerTime = 2s;
    const Server server(settings);
    RawClient client(server.port());
    client.readSlowly();
    client.send(get("/large"));
    ASSERT_TRUE(eventually([&server] { return server.figures().requests == 1; }));
    EXPECT_TRUE(server.isAlive());
    EXPECT_TRUE(eventually([&server] { return server.figures().clients == 0; }));
}

TEST(HttpServer, GivesALargePageInFull) {
    const Server server;
    EXPECT_EQ(bodyOf(server.ask(get("/large"))).size(), largePage);
}

TEST(HttpServer, MakesRoomForWhoAsksAmongClientsThatDoNot) {
    constexpr std::size_t room = 16;
    constexpr std::size_t crowd = 200;
    const Server server(withClients(room));
    std::vector<std::unique_ptr<RawClient>> silent;
    for (std::size_t i = 0; i < crowd; ++i) {
        silent.push_back(std::make_unique<RawClient>(server.port()));
        if (i % 2 == 0)
            silent.back()->send("GET / HTTP/1.1\r\n"); // and never the rest
    }
    EXPECT_TRUE(server.isAlive());
    EXPECT_LE(server.figures().clients, room);
    EXPECT_TRUE(eventually([&server] { return server.figures().turnedAway >= crowd + 1 - room; }));
    EXPECT_TRUE(silent.front()->isClosedInSilence()) << "it has waited longest";
}

TEST(HttpServer, TurnsAwayAClientWhileAllOthersAreBeingAnswered) {
    const Server server(withClients(1));
    RawClient reading(server.port());
    reading.readSlowly();
    reading.send(get("/large"));
    ASSERT_TRUE(eventually([&server] { return server.figures().requests == 1; }));
    RawClient late(server.port());
    EXPECT_TRUE(late.isClosedInSilence());
    EXPECT_EQ(server.figures().turnedAway, 1U);
}

TEST(HttpServer, StopsAtOnceWhateverItsClientsDo) {
    Server server;
    RawClient silent(server.port());
    RawClient halfway(server.port());
    halfway.send("GET / HTTP/1.1\r\n");
    RawClient reading(server.port());
    reading.readSlowly();
    reading.send(get("/large"));
    ASSERT_TRUE(eventually([&server] { return server.figures().requests == 1; }));
    const auto begun = std::chrono::steady_clock::now();
    server.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 1s * (isSanitized ? 10 : 1));
    server.stop(); // nothing more happens
}

TEST(HttpServer, SaysWhyItCannotListen) {
    const Server other;
    HttpServer server({}, [](const HttpRequest&) { return host::HttpResponse(); });
    EXPECT_THAT(server.start({"127.0.0.1", other.port(), {}}, {}),
                AllOf(StartsWith("cannot listen on 127.0.0.1:" + std::to_string(other.port()) + " ("),
                      EndsWith("a port that no other program has")));
    HttpServer elsewhere({}, [](const HttpRequest&) { return host::HttpResponse(); });
    EXPECT_THAT(elsewhere.start({"203.0.113.7", 0, {}}, {}), HasSubstr("choose an address of this computer"));
}

namespace {

// A certificate for localhost, and its key.
class HttpServerTls : public testing::Test {
protected:
    HttpServerTls() {
        QProcess openssl;
        openssl.start(QStringLiteral("openssl"),
                      {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                       QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-days"),
                       QStringLiteral("2"), QStringLiteral("-subj"), QStringLiteral("/CN=localhost"),
                       QStringLiteral("-addext"), QStringLiteral("subjectAltName=DNS:localhost"),
                       QStringLiteral("-keyout"), keyFile, QStringLiteral("-out"), certificateFile});
        EXPECT_TRUE(openssl.waitForFinished(patienceMs));
        EXPECT_EQ(openssl.exitCode(), 0) << openssl.readAllStandardError().toStdString();
    }

    HttpServer::Identity identity() const {
        QFile key(keyFile);
        EXPECT_TRUE(key.open(QIODevice::ReadOnly));
        return {certificateFile.toStdString(), key.readAll().toStdString()};
    }
    QSslCertificate certificate() const { return QSslCertificate::fromPath(certificateFile).value(0); }

    const QTemporaryDir folder;
    const QString keyFile = folder.filePath(QStringLiteral("key.pem"));
    const QString certificateFile = folder.filePath(QStringLiteral("certificate.pem"));
};

} // namespace

TEST_F(HttpServerTls, AnswersWhoBelievesItsCertificate) {
    const Server server({}, identity());
    RawClient client(server.port(), certificate());
    client.send(get("/first"));
    EXPECT_EQ(bodyOf(client.readAnswer()), "/first");
    client.send(get("/large", "Connection: close\r\n"));
    EXPECT_EQ(bodyOf(client.readToEnd()).size(), largePage);
    EXPECT_TRUE(client.isClosed());
}

TEST_F(HttpServerTls, SaysNothingInClear) {
    const Server server({}, identity());
    RawClient client(server.port());
    client.send(get("/secret"));
    EXPECT_THAT(client.readToEnd(), AllOf(Not(HasSubstr("HTTP")), Not(HasSubstr("secret"))));
    EXPECT_TRUE(client.isClosed());
    EXPECT_EQ(server.figures().requests, 0U);
}

TEST_F(HttpServerTls, LetsGoOfAClientThatIsSlowWithItsHandshake) {
    HttpServer::Settings settings;
    settings.requestTime = 200ms;
    const Server server(settings, identity());
    RawClient client(server.port());
    EXPECT_TRUE(client.isClosedInSilence());
}

TEST_F(HttpServerTls, SaysWhatIsWrongWithItsIdentity) {
    const auto start = [](const HttpServer::Identity& identity) {
        HttpServer server({}, [](const HttpRequest&) { return host::HttpResponse(); });
        return server.start(anyPort, identity);
    };
    EXPECT_THAT(start({"/no/such/file", identity().key}),
                StartsWith("the certificate \"/no/such/file\" cannot be used ("));
    EXPECT_THAT(start({certificateFile.toStdString(), "no key"}), HasSubstr("cannot be used ("));
}
