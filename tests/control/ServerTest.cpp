#include "FakeHost.h"
#include "cli/ControlClient.h"
#include "services/control/ControlConnection.h"
#include "services/control/ControlServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

// Over real sockets, with a fake host behind them.

using namespace host;
using testing::AllOf;
using testing::HasSubstr;
using Result = Halvex::DriverErrorResult;

namespace {

constexpr int patienceMs = 60'000;
#ifdef _WIN32
constexpr bool pipesKeepWhatWasNotRead = false; // once their server has closed them
#else
constexpr bool pipesKeepWhatWasNotRead = true;
#endif

class Server : public testing::Test {
protected:
    // What comes next, or "end" when the connection has ended.
    static std::string next(ControlClient& client) {
        QElapsedTimer elapsed;
        elapsed.start();
        const auto line = client.nextLine([&elapsed] { return elapsed.elapsed() > patienceMs; });
        if (!line && elapsed.elapsed() > patienceMs)
            ADD_FAILURE() << "nothing came";
        return line ? line->toStdString() : "end";
    }

    void connect(ControlClient& client) { ASSERT_TRUE(client.connectTo({path})); }

    std::string ask(const QByteArray& line) {
        ControlClient client;
        connect(client);
        EXPECT_TRUE(client.send(line));
        return next(client);
    }

    void publish(double value) {
        PointUpdate update;
        update.number = 2; // LEVEL
        update.value = value;
        update.quality = PointQuality::Good;
        fake.store.publishPoints(4, 7, {update});
    }

    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const Site site = controlSite();
    FakeHost fake{site};
    ControlServer server{fake, fake.store};
};

const QByteArray writeRun = R"({"id":1,"do":"write","values":[{"point":"hill/RUN","value":1}]})";

} // namespace

TEST_F(Server, IsOpenToItsUserAlone) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    EXPECT_EQ(QFile::permissions(QString::fromStdString(path)) &
                  ~(QFile::ExeOwner | QFile::ExeUser | QFile::ReadOwner | QFile::WriteOwner),
              QFile::ReadUser | QFile::WriteUser);
}

TEST_F(Server, AnswersEachLineOfAConversation) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    ControlClient client;
    connect(client);
    ASSERT_TRUE(client.send(writeRun + "\nrubbish\n" + R"({"id":2,"do":"poll"})"));
    std::vector<std::string> replies{next(client), next(client), next(client)};
    EXPECT_THAT(replies, testing::UnorderedElementsAre(HasSubstr("\"result\":\"success\""),
                                                       HasSubstr("malformed"), HasSubstr("asked for")));
}

TEST_F(Server, AnswersALineThatIsTooLongAndTheOneBehindIt) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    ControlClient client;
    connect(client);
    ASSERT_TRUE(client.send(QByteArray(5'000'000, 'x') + "\n{\"do\":\"poll\"}"));
    EXPECT_THAT(next(client), AllOf(HasSubstr("malformed"), HasSubstr("65536 bytes")));
    EXPECT_THAT(next(client), HasSubstr("asked for"));
}

TEST_F(Server, RepliesWhenTheCommandEndsOnAnotherThread) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    fake.hold();
    std::thread ender([this] {
        fake.waitForCommands(1);
        fake.answerWith(Result::TimeOut);
        fake.release();
    });
    EXPECT_THAT(ask(writeRun), HasSubstr("\"result\":\"time-out\""));
    ender.join();
}

TEST_F(Server, TellsWatchersWhatChanges) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    ControlClient client;
    connect(client);
    ASSERT_TRUE(client.send(R"({"do":"watch","rtus":["waterworks/pump-house"]})"));
    EXPECT_THAT(next(client), HasSubstr("\"points\":3"));
    for (int i = 0; i < 3; ++i)
        EXPECT_THAT(next(client), HasSubstr("never read"));
    publish(17);
    EXPECT_THAT(next(client), AllOf(HasSubstr("\"name\":\"LEVEL\""), HasSubstr("\"value\":17")));
}

TEST_F(Server, DropsAWatcherThatDoesNotReadAndSparesTheOthers) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    const QByteArray watch = R"({"do":"watch","rtus":["waterworks/pump-house"]})";
    QLocalSocket lazy;
    lazy.setReadBufferSize(1); // reads no more than that by itself
    lazy.connectToServer(QString::fromStdString(path));
    ASSERT_TRUE(lazy.waitForConnected(patienceMs));
    lazy.write(watch + '\n');
    ASSERT_TRUE(lazy.waitForReadyRead(patienceMs)); // it is a watcher now
    ControlClient eager;
    connect(eager);
    ASSERT_TRUE(eager.send(watch));
    for (int i = 0; i < 4; ++i)
        next(eager);
    // All in all more than the server and the system keep for one that does not read; in portions that they
    // do keep for one that reads.
    constexpr int portion = 2'000;
    for (int i = 0; i < 8; ++i) {
        for (int change = 1; change <= portion; ++change)
            publish(i * portion + change);
        for (int change = 1; change < portion; ++change)
            next(eager);
        EXPECT_THAT(next(eager), HasSubstr("\"value\":" + std::to_string((i + 1) * portion) + ","));
    }

    lazy.setReadBufferSize(0);
    QByteArray received = lazy.readAll();
    while (lazy.waitForReadyRead(patienceMs))
        received += lazy.readAll();
    received += lazy.readAll();
    EXPECT_EQ(lazy.state(), QLocalSocket::UnconnectedState);
    if (pipesKeepWhatWasNotRead) {
        const std::string last = received.trimmed().split('\n').last().toStdString();
        EXPECT_THAT(last, AllOf(HasSubstr("\"code\":\"busy\""), HasSubstr("wait for you to read them")));
    }
}

TEST_F(Server, DoesNotWorkForAClientThatDoesNotReadItsReplies) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    QLocalSocket lazy;
    lazy.setReadBufferSize(1); // reads no more than that by itself
    lazy.connectToServer(QString::fromStdString(path));
    ASSERT_TRUE(lazy.waitForConnected(patienceMs));
    const QByteArray requests = QByteArray("{\"do\":\"poll\",\"rtus\":[\"hill\"]}\n").repeated(1'000);
    // It writes until the server takes no more.
    bool isHeldUp = false;
    while (!isHeldUp && fake.polls().size() < 500'000) {
        if (lazy.bytesToWrite() < requests.size())
            lazy.write(requests);
        isHeldUp = !lazy.waitForBytesWritten(2'000);
    }
    EXPECT_TRUE(isHeldUp);
    EXPECT_THAT(ask(R"({"do":"status"})"), HasSubstr("channels")); // others are served
}

TEST_F(Server, ReplacesTheSocketOfAKilledHost) {
    {
        // A killed process leaves its socket in the file system; nobody listens at it.
        QLocalServer killed;
        ASSERT_TRUE(killed.listen(QString::fromStdString(path) + QStringLiteral("x")));
        ASSERT_TRUE(
            QFile::rename(QString::fromStdString(path) + QStringLiteral("x"), QString::fromStdString(path)));
    }
    ASSERT_TRUE(QFile::exists(QString::fromStdString(path)));
    ASSERT_EQ(server.start(doorAt(path)), "");
    EXPECT_THAT(ask(R"({"do":"status"})"), HasSubstr("channels"));
}

TEST_F(Server, LeavesTheSocketOfALivingHostAlone) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    ControlServer second(fake, fake.store);
    EXPECT_THAT(second.start(doorAt(path)), HasSubstr("belongs to another sbus-host"));
    EXPECT_THAT(ask(R"({"do":"status"})"), HasSubstr("channels"));
}

TEST_F(Server, LeavesWhatIsNoSocketAlone) {
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("mine");
    file.close();
    EXPECT_THAT(server.start(doorAt(path)), HasSubstr("something else of that name"));
    EXPECT_EQ(file.size(), 4);
}

TEST_F(Server, LeavesTheSocketOfAnotherProgramAlone) {
    QLocalServer other;
    ASSERT_TRUE(other.listen(QString::fromStdString(path)));
    EXPECT_THAT(server.start(doorAt(path)), HasSubstr("belongs to another program"));
    EXPECT_TRUE(QFile::exists(QString::fromStdString(path)));
}

TEST_F(Server, TellsThatThereIsNoDirectoryForItsSocket) {
    EXPECT_THAT(server.start(doorAt(folder.filePath(QStringLiteral("none/control.sock")).toStdString())),
                HasSubstr("No such file or directory"));
}

// In a container the next host often has the number of the one before.
TEST_F(Server, TakesTheLockOfAKilledHostWithItsOwnProcessNumber) {
    QFile lock(QString::fromStdString(path + ".lock"));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.write(QByteArray::number(QCoreApplication::applicationPid()) + "\nhost_control_test\n" +
               QSysInfo::machineHostName().toUtf8() + '\n');
    lock.close();
    EXPECT_EQ(server.start(doorAt(path)), "");
}

TEST_F(Server, ListensAnewWhenItsFolderWasWiped) {
    const QString run = folder.filePath(QStringLiteral("run"));
    ControlDoor door = doorAt((run + QStringLiteral("/control.sock")).toStdString());
    door.isDirectoryOwn = true;
    ASSERT_TRUE(QDir().mkpath(run));
    ASSERT_EQ(server.start(door), "");
    ControlClient before;
    ASSERT_TRUE(before.connectTo({door.path}));
    ASSERT_TRUE(QDir(run).removeRecursively());

    QElapsedTimer elapsed;
    elapsed.start();
    ControlClient after;
    while (!after.connectTo({door.path}) && elapsed.elapsed() < patienceMs)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(after.send(R"({"do":"poll"})"));
    EXPECT_THAT(next(after), HasSubstr("asked for"));
    ASSERT_TRUE(before.send(R"({"do":"poll"})")); // who was connected stays so
    EXPECT_THAT(next(before), HasSubstr("asked for"));
}

TEST_F(Server, RemovesAtItsEndNoSocketButItsOwn) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    const QString mine = QString::fromStdString(path);
    const QString aside = mine + QStringLiteral(".aside");
    ASSERT_TRUE(QFile::rename(mine, aside));
    QLocalServer other;
    ASSERT_TRUE(other.listen(mine));
    server.stop();
    EXPECT_TRUE(QFile::exists(mine));
    EXPECT_TRUE(QFile::exists(aside)); // nor what it no longer finds at its place
}

TEST_F(Server, TellsThatItsPathIsTooLong) {
    const std::string deep = path + std::string(100, 'x');
    EXPECT_THAT(server.start(doorAt(deep)), AllOf(HasSubstr(std::to_string(deep.size()) + " bytes"),
                                                  HasSubstr("a socket's may have 107")));
}

TEST_F(Server, LeavesNoSocketBehind) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    server.stop();
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path)));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path + ".lock")));
    ControlServer next(fake, fake.store);
    EXPECT_EQ(next.start(doorAt(path)), "");
}

TEST_F(Server, TurnsAwayMoreClientsThanItsLimitAndTellsThemWhileNoneIsIdle) {
    ASSERT_EQ(server.start(doorAt(path, 2)), "");
    fake.hold();
    ControlClient watcher;
    connect(watcher);
    ASSERT_TRUE(watcher.send(R"({"do":"watch","rtus":["hill"]})"));
    next(watcher);
    {
        ControlClient writer;
        connect(writer);
        ASSERT_TRUE(writer.send(writeRun));
        fake.waitForCommands(1);
        ControlClient third;
        connect(third);
        EXPECT_THAT(next(third), AllOf(HasSubstr("\"code\":\"busy\""), HasSubstr("2 clients")));
        EXPECT_EQ(next(third), "end");
        fake.release();
        EXPECT_THAT(next(writer), HasSubstr("success"));
    }
    // The second has left: there is room again, as soon as the server has seen it.
    QElapsedTimer elapsed;
    elapsed.start();
    std::string reply;
    while (reply.find("asked for") == std::string::npos && elapsed.elapsed() < patienceMs)
        reply = ask(R"({"do":"poll"})");
    EXPECT_THAT(reply, HasSubstr("asked for"));
}

TEST_F(Server, EndsTheOldestIdleClientForOneThatComes) {
    ASSERT_EQ(server.start(doorAt(path, 2)), "");
    ControlClient oldest;
    connect(oldest);
    ASSERT_TRUE(oldest.send(R"({"do":"poll"})"));
    next(oldest);
    ControlClient later;
    connect(later);
    ASSERT_TRUE(later.send(R"({"do":"poll"})"));
    next(later);
    EXPECT_THAT(ask(R"({"do":"poll"})"), HasSubstr("asked for"));
    EXPECT_THAT(next(oldest), AllOf(HasSubstr("\"code\":\"busy\""), HasSubstr("idle")));
    EXPECT_EQ(next(oldest), "end");
    ASSERT_TRUE(later.send(R"({"do":"poll"})"));
    EXPECT_THAT(next(later), HasSubstr("asked for"));
}

TEST_F(Server, EndsWhileClientsWaitAndTellsEachOfThem) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    fake.hold();
    std::vector<std::unique_ptr<ControlClient>> clients;
    for (int i = 0; i < 50; ++i) {
        clients.push_back(std::make_unique<ControlClient>());
        connect(*clients.back());
        ASSERT_TRUE(clients.back()->send(writeRun));
    }
    ControlClient silent;
    connect(silent);
    fake.waitForCommands(clients.size());
    server.stop();
    for (const auto& client : clients) {
        EXPECT_THAT(next(*client), HasSubstr("\"code\":\"ending\""));
        EXPECT_EQ(next(*client), "end");
    }
    EXPECT_EQ(next(silent), "end");
    fake.release(); // nobody is told any more
}

TEST_F(Server, EndsWhileAWatcherDoesNotRead) {
    ASSERT_EQ(server.start(doorAt(path)), "");
    ControlClient lazy;
    connect(lazy);
    ASSERT_TRUE(lazy.send(R"({"do":"watch"})"));
    next(lazy);
    for (int i = 1; i <= 5'000; ++i)
        publish(i);
    std::this_thread::sleep_for(std::chrono::milliseconds(200)); // more or less of it is on its way
    server.stop();
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path)));
}
