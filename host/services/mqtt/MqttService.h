#pragma once

#include "BirthDeathNumber.h"
#include "MqttSession.h"
#include "services/PeriodicThread.h"
#include "services/Service.h"
#include "services/StateFile.h"
#include "site/MqttSettings.h"

#include <memory>
#include <string>

namespace host {

// Tells the values of a running site to an MQTT broker, and takes commands from there where the site file
// allows it. A thread of its own does all of it.
class MqttService : public Service {
public:
    // What a test may want otherwise.
    struct Settings {
        ReconnectPauses::Settings pauses;
        MakeBrokerClient makeClient; // null: over libmosquitto
        std::chrono::milliseconds answerLimit = MqttSession::Settings().answerLimit;
    };

    // `stateDirectory` is where changes are kept while the broker is away; empty: the user's usual one.
    MqttService(const MqttSettings& mqttSettings, std::string stateDirectory, std::string siteFile);
    MqttService(const MqttSettings& mqttSettings, std::string stateDirectory, std::string siteFile,
                Settings serviceSettings);
    ~MqttService() override;

    std::string name() const override { return "mqtt"; }
    // A broker that is not there is no fault: the service waits for it.
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

private:
    std::unique_ptr<Layout> makeSparkplug(RunningSite& runningSite);
    void openBacklog(RunningSite& runningSite);

    const MqttSettings mqtt;
    const std::string directory;
    const std::string sitePath;
    Settings settings;
    std::unique_ptr<StateFile> place; // holds the backlog's file for this process alone
    std::unique_ptr<ChangeBacklog> backlog;
    std::unique_ptr<BirthDeathNumber> birthDeathNumber; // of Sparkplug
    std::unique_ptr<Layout> layout;
    std::unique_ptr<MqttSession> session;
    PeriodicThread thread; // last: it works on all of the above
};

} // namespace host
