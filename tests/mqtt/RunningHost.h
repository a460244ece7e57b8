#pragma once

#include "Eventually.h"
#include "services/RunningSite.h"
#include "services/mqtt/MqttService.h"

#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <mutex>

// Ends each command well and remembers it. Any thread.
class EndingTaker : public host::CommandTaker {
public:
    std::string submit(const host::Command& command, host::CommandDone done) override {
        const std::lock_guard<std::mutex> lock(mutex);
        if (const auto* const one = std::get_if<host::SwitchPoint>(&command.action))
            texts.push_back("switch " + std::to_string(one->point) + (one->on ? " on" : " off"));
        else if (const auto* const set = std::get_if<host::SetPoint>(&command.action))
            texts.push_back("set " + std::to_string(set->point) + " " +
                            std::to_string(static_cast<int>(set->value)));
        done({result.load()});
        return {};
    }
    std::vector<std::string> taken() {
        const std::lock_guard<std::mutex> lock(mutex);
        return texts;
    }

    std::atomic<Halvex::DriverErrorResult> result{Halvex::DriverErrorResult::Success}; // of all that come

private:
    std::mutex mutex;
    std::vector<std::string> texts;
};

// A site without lines whose values the test publishes, and the service at work on it.
class RunningHost {
public:
    explicit RunningHost(host::Site runningSite) : site(std::move(runningSite)) {}
    ~RunningHost() { stop(); }

    void start(const host::MqttSettings& settings) { start(settings, quick()); }
    void start(const host::MqttSettings& settings, const host::MqttService::Settings& serviceSettings) {
        service = std::make_unique<host::MqttService>(settings, folder.path().toStdString(), "site.toml",
                                                      serviceSettings);
        if (const std::string fault = service->start(running); !fault.empty())
            throw std::runtime_error(fault);
    }
    void stop() {
        if (service)
            service->stop();
    }
    static host::MqttService::Settings quick() {
        host::MqttService::Settings settings;
        settings.pauses = {std::chrono::milliseconds(50), std::chrono::milliseconds(200),
                           std::chrono::milliseconds(10'000)};
        return settings;
    }

    // A new value of an analog point, by its position in the first RTU.
    void publish(unsigned position, double value, PointQuality quality = PointQuality::Good) {
        store.publishPoints(site.channels[0].id, site.channels[0].rtus[0].id,
                            {PointUpdate{true, position, value, {}, quality}});
    }
    std::uint64_t figure(const std::string& name) const {
        for (const host::ServiceFigure& one : service->figures())
            if (one.name == name)
                return one.value;
        throw std::runtime_error("no figure " + name);
    }
    bool isConnected() {
        return eventually([this] { return figure("connected") == 1; });
    }
    // Whether a message to people holds the text, at last.
    bool hasTold(const std::string& text) {
        return eventually([&] {
            for (const std::string& one : messages.take())
                told += one + "\n";
            return told.find(text) != std::string::npos;
        });
    }

    const host::Site site;
    host::ValueStore store{site};
    host::Messages messages;
    std::string told;
    EndingTaker taker;
    host::ExchangeFeed feed;
    const QTemporaryDir folder;
    host::RunningSite running{site, store, feed, taker, messages, [this] { return figures(); }, {}};
    std::unique_ptr<host::MqttService> service;
    std::atomic<bool> isLineUp{true};

private:
    host::SiteFigures figures() {
        host::SiteFigures all;
        for (const host::Channel& channel : site.channels) {
            all.channels.push_back({&channel, {}});
            all.channels.back().status.connected = isLineUp;
            for (const host::Rtu& rtu : channel.rtus) {
                all.rtus.push_back({&channel, &rtu, {}});
                all.rtus.back().status.connected = isLineUp;
                all.rtus.back().status.requests = 1;
            }
        }
        return all;
    }
};
