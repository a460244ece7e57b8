#include "Broker.h"
#include "RunningHost.h"
#include "services/mqtt/MosquittoClient.h"

#include <mosquitto.h>

#include <QElapsedTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <thread>

using namespace host;

namespace {

constexpr unsigned pointCount = 50;

// How much of it is run: a little, or with SBUS_SOAK set at length.
struct Extent {
    int kills = 3;
    int changesPerSecond = 1'000;
    int millisecondsBetween = 700;
};

Extent extent() {
    return std::getenv("SBUS_SOAK") != nullptr ? Extent{20, 5'000, 2'000} : Extent{};
}

Site countingSite() {
    Rtu rtu;
    rtu.id = 1;
    rtu.name = "counters";
    for (unsigned i = 0; i < pointCount; ++i) {
        Point point;
        point.id = i + 1;
        point.name = "C" + std::to_string(i);
        point.kind = PointKind::Analog;
        point.address = {'R', i};
        rtu.points.push_back(point);
    }
    Channel channel;
    channel.id = 1;
    channel.name = "line";
    channel.primary = UdpEnd{"127.0.0.1", 9};
    channel.rtus = {rtu};
    Site site{{channel}};
    site.name = "kills";
    return site;
}

// Notes the values of each point in the order in which they come for the first time. One connection for each
// life of the broker, on a thread of its own.
class Listener {
public:
    explicit Listener(int brokerPort) : port(brokerPort), thread([this] { run(); }) {}
    ~Listener() { end(); }

    // The broker has begun another life.
    void waitUntilSubscribed(int life) {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return subscriptions >= life; });
    }
    void end() {
        isEnding = true;
        if (thread.joinable())
            thread.join();
    }
    std::uint64_t count() const { return heard; }

    // Once it has ended.
    std::map<std::string, std::vector<int>> values; // by topic, each for the first time
    std::uint64_t repeats = 0;

private:
    static void connected(mosquitto* client, void*, int code) {
        if (code == 0)
            mosquitto_subscribe(client, nullptr, "sbus/kills/line/counters/+", 0);
    }
    static void subscribed(mosquitto*, void* object, int, int, const int*) {
        auto& self = *static_cast<Listener*>(object);
        const std::lock_guard<std::mutex> lock(self.mutex);
        ++self.subscriptions;
        self.changed.notify_all();
    }
    static void received(mosquitto*, void* object, const mosquitto_message* message) {
        auto& self = *static_cast<Listener*>(object);
        const std::string payload(static_cast<const char*>(message->payload),
                                  static_cast<std::size_t>(message->payloadlen));
        const std::string begin = "{\"value\":";
        if (payload.compare(0, begin.size(), begin) != 0 || payload[begin.size()] == 'n')
            return; // the state of the RTU, or a value that was never read
        self.note(message->topic, std::stoi(payload.substr(begin.size())));
    }
    void note(const std::string& topic, int value) {
        std::vector<int>& own = values[topic];
        int& highest = highestOf[topic];
        // One that comes again repeats what was there; one that is new is the next one.
        if (value <= highest && std::find(own.begin(), own.end(), value) != own.end()) {
            ++repeats;
            return;
        }
        own.push_back(value);
        highest = std::max(highest, value);
        ++heard;
    }
    void run() {
        mosquitto_lib_init();
        while (!isEnding) {
            mosquitto* const client = mosquitto_new(nullptr, true, this);
            mosquitto_connect_callback_set(client, &Listener::connected);
            mosquitto_subscribe_callback_set(client, &Listener::subscribed);
            mosquitto_message_callback_set(client, &Listener::received);
            if (mosquitto_connect(client, "127.0.0.1", port, 60) == MOSQ_ERR_SUCCESS)
                while (!isEnding && mosquitto_loop(client, 50, 1) == MOSQ_ERR_SUCCESS) {
                }
            mosquitto_destroy(client);
            QThread::msleep(5);
        }
    }

    const int port;
    std::map<std::string, int> highestOf;
    std::mutex mutex; // guards the number of subscriptions
    std::condition_variable changed;
    int subscriptions = 0;
    std::atomic<std::uint64_t> heard{0};
    std::atomic<bool> isEnding{false};
    std::thread thread; // last: it works on all of the above
};

// Gives all points new values, one after the other, as often a second as it is asked to. Every value of a
// point is one higher than the one before.
class Publisher {
public:
    Publisher(RunningHost& runningHost, int changesPerSecond)
        : host(runningHost), thread([this, changesPerSecond] { run(changesPerSecond); }) {}
    ~Publisher() { end(); }
    void end() {
        isEnding = true;
        if (thread.joinable())
            thread.join();
    }
    int rounds = 0; // of all points, once it has ended

private:
    void run(int changesPerSecond) {
        QElapsedTimer elapsed;
        elapsed.start();
        while (!isEnding) {
            const qint64 due = elapsed.elapsed() * changesPerSecond / 1'000 / pointCount;
            for (; rounds < due; ++rounds)
                for (unsigned i = 0; i < pointCount; ++i)
                    host.publish(i, rounds + 1);
            QThread::msleep(5);
        }
    }

    RunningHost& host;
    std::atomic<bool> isEnding{false};
    std::thread thread;
};

} // namespace

TEST(MqttBroker, ThatIsKilledOverAndOverUnderLoadHearsEveryChangeInOrder) {
    const Extent wanted = extent();
    Broker broker;
    RunningHost host{countingSite()};
    MqttSettings settings;
    settings.broker = parseBrokerUrl(broker.url()).value();
    std::atomic<int> life{0};
    Listener listener(broker.port());
    // The host connects once the listener has: what comes before it would be heard by nobody.
    MqttService::Settings service = RunningHost::quick();
    service.pauses.longest = std::chrono::milliseconds(100);
    service.makeClient = [&] {
        listener.waitUntilSubscribed(life);
        return std::make_unique<MosquittoClient>(settings, "host");
    };
    broker.start();
    life = 1;
    host.start(settings, service);
    ASSERT_TRUE(host.isConnected());
    Publisher publisher(host, wanted.changesPerSecond);
    for (int kill = 0; kill < wanted.kills; ++kill) {
        QThread::msleep(static_cast<unsigned long>(wanted.millisecondsBetween));
        ++life;
        if (kill % 2 == 0) { // so that much is on its way when it is killed
            broker.hang();
            QThread::msleep(100);
        }
        broker.kill();
        if (kill % 3 == 0) // away for a while, so that the disk has something to keep
            QThread::msleep(static_cast<unsigned long>(wanted.millisecondsBetween));
        broker.start();
        ASSERT_TRUE(eventually([&] { return host.figure("connections") > std::uint64_t(kill + 1); }));
    }
    publisher.end();
    const std::uint64_t all = std::uint64_t(publisher.rounds) * pointCount;
    EXPECT_TRUE(eventually([&] { return listener.count() >= all; }));
    listener.end();
    host.stop();
    EXPECT_EQ(host.figure("lost"), 0U);
    ASSERT_EQ(listener.values.size(), pointCount);
    std::size_t outOfOrder = 0;
    std::uint64_t heard = 0;
    for (const auto& [topic, values] : listener.values) {
        heard += values.size();
        outOfOrder += std::is_sorted(values.begin(), values.end()) ? 0U : 1U;
    }
    EXPECT_EQ(heard, all);
    EXPECT_EQ(outOfOrder, 0U);
    std::printf("%d kills, %llu changes, %llu heard, %llu of them again\n", wanted.kills,
                static_cast<unsigned long long>(all),
                static_cast<unsigned long long>(heard + listener.repeats),
                static_cast<unsigned long long>(listener.repeats));
}
