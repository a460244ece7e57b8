#include "MqttService.h"

#include "BatchLayout.h"
#include "MosquittoClient.h"
#include "SparkplugLayout.h"
#include "services/StateDirectory.h"

#include <utility>

namespace host {

namespace {

// Between two exchanges with the broker, and while there is none.
constexpr std::chrono::milliseconds turnPause{5};

std::string clientIdOf(const MqttSettings& settings, const Site& site) {
    return settings.clientId.empty() ? "sbus-host-" + site.name : settings.clientId;
}

std::unique_ptr<Layout> makeLayout(const MqttSettings& settings, const RunningSite& running) {
    PlainLayout::Settings layout{settings.prefix, running.site.name, settings.qos, settings.takesCommands};
    const PointTable& points = running.values.points();
    if (settings.layout == MqttLayout::Batch)
        return std::make_unique<BatchLayout>(std::move(layout), points);
    return std::make_unique<PlainLayout>(std::move(layout), points);
}

} // namespace

MqttService::MqttService(const MqttSettings& mqttSettings, std::string stateDirectory, std::string siteFile)
    : MqttService(mqttSettings, std::move(stateDirectory), std::move(siteFile), Settings()) {}

MqttService::MqttService(const MqttSettings& mqttSettings, std::string stateDirectory, std::string siteFile,
                         Settings serviceSettings)
    : mqtt(mqttSettings), directory(std::move(stateDirectory)), sitePath(std::move(siteFile)),
      settings(std::move(serviceSettings)) {}

MqttService::~MqttService() {
    MqttService::stop();
}

std::string MqttService::start(RunningSite& runningSite) {
    openBacklog(runningSite);
    layout =
        mqtt.layout == MqttLayout::Sparkplug ? makeSparkplug(runningSite) : makeLayout(mqtt, runningSite);
    MqttSession::Settings sessionSettings;
    sessionSettings.broker = toText(mqtt.broker);
    sessionSettings.pauses = settings.pauses;
    sessionSettings.answerLimit = settings.answerLimit;
    sessionSettings.makeClient = settings.makeClient;
    if (!sessionSettings.makeClient)
        sessionSettings.makeClient = [this, id = clientIdOf(mqtt, runningSite.site)] {
            return std::make_unique<MosquittoClient>(mqtt, id);
        };
    session = std::make_unique<MqttSession>(std::move(sessionSettings), runningSite, *layout, backlog.get());
    thread.start("MQTT", turnPause, [this] { session->turn(); });
    return {};
}

std::unique_ptr<Layout> MqttService::makeSparkplug(RunningSite& runningSite) {
    Messages& messages = runningSite.messages;
    birthDeathNumber = std::make_unique<BirthDeathNumber>(directory, sitePath);
    if (const std::string fault = birthDeathNumber->open(); !fault.empty())
        messages.tell(
            "MQTT: " + fault +
                "; a host of Sparkplug may take this edge node for one of before. Name a directory with "
                "--state-dir",
            Severity::Warning);
    SparkplugLayout::Settings sparkplug;
    sparkplug.session = {{mqtt.prefix, topicLevel(runningSite.site.name)}, mqtt.primaryHost};
    sparkplug.takesCommands = mqtt.takesCommands;
    sparkplug.lastBirthDeathSequence = birthDeathNumber->last();
    sparkplug.tell = [&messages](const std::string& text) {
        messages.tell("MQTT: " + text, Severity::Warning);
    };
    sparkplug.keepBirthDeathSequence = [this, tell = sparkplug.tell](std::uint8_t number) {
        if (const std::string fault = birthDeathNumber->keep(number); !fault.empty())
            tell("the number of the connection is not kept: " + fault);
    };
    return std::make_unique<SparkplugLayout>(std::move(sparkplug), runningSite.values);
}

// Without a place for it the service works on, and memory has to do.
void MqttService::openBacklog(RunningSite& runningSite) {
    const std::string base = stateDirectory(directory);
    std::string fault = "this user has no directory for state files";
    if (!base.empty()) {
        place = std::make_unique<StateFile>(base, stateFileName("mqtt", realSitePath(sitePath), ".db"));
        fault = place->open();
    }
    if (!fault.empty()) {
        runningSite.messages.tell("MQTT: " + fault +
                                      "; while the broker is away only the last changes are kept, in memory. "
                                      "Name a directory with --state-dir",
                                  Severity::Warning);
        return;
    }
    backlog = std::make_unique<ChangeBacklog>(runningSite.values.points(), place->path(), mqtt.backlogBytes);
    backlog->open();
}

void MqttService::stop() {
    if (!thread.isRunning())
        return;
    thread.stop();
    session->end();
}

std::vector<ServiceFigure> MqttService::figures() const {
    return session->figures();
}

} // namespace host
