#include "GatewayServices.h"

#include "plan/ModbusMap.h"
#include "runtime/Secret.h"

#ifdef SBUS_WITH_HISTORY
#include "services/history/HistoryService.h"
#endif
#ifdef SBUS_WITH_HTTP
#include "services/http/HttpService.h"
#endif
#ifdef SBUS_WITH_MODBUS
#include "services/modbus/ModbusService.h"
#endif
#ifdef SBUS_WITH_MQTT
#include "services/mqtt/MqttService.h"
#endif

#include <filesystem>

namespace host {

namespace {

[[maybe_unused]] void checkSecret(const std::optional<SecretSource>& source, Findings& findings) {
    if (!source)
        return;
    if (const Secret secret = readSecret(*source); !secret.text)
        findings.error(source->place, "there is no password: " + secret.fault, {});
}

[[maybe_unused]] void tellMissing(const std::string& table, const Place& place, Findings& findings) {
    findings.error(place, "this sbus-host was built without [" + table + "]",
                   "take the table out, or a program that was built with it");
}

// The host begins without the folder, and records once it is there.
void checkHistory(const HistorySettings& settings, Findings& findings) {
#ifdef SBUS_WITH_HISTORY
    const std::filesystem::path folder =
        std::filesystem::absolute(std::filesystem::u8path(settings.file)).parent_path();
    std::error_code failure;
    if (!std::filesystem::is_directory(folder, failure))
        findings.warning(settings.place, "the history's folder " + folder.u8string() + " is not there",
                         "make it, and let the host's user write to it");
#else
    tellMissing("history", settings.place, findings);
#endif
}

void checkHttp(const HttpSettings& settings, Findings& findings) {
#ifdef SBUS_WITH_HTTP
    checkHttpFiles(settings, findings);
#else
    tellMissing("http", settings.listen.place, findings);
#endif
}

void checkMqtt(const MqttSettings& settings, Findings& findings) {
#ifdef SBUS_WITH_MQTT
    checkSecret(settings.password, findings);
    if (const std::string fault = findSecretFileFault(settings.keyFile);
        !settings.keyFile.empty() && !fault.empty())
        findings.error(settings.place, "key_file: " + fault, {});
#else
    tellMissing("mqtt", settings.place, findings);
#endif
}

void checkModbus([[maybe_unused]] const Site& site, const ModbusSettings& settings, Findings& findings) {
#ifdef SBUS_WITH_MODBUS
    const ModbusMap map(site, settings, findings); // tells what does not fit
#else
    tellMissing("modbus", settings.listen.place, findings);
#endif
}

} // namespace

GatewayServices makeGatewayServices([[maybe_unused]] const Site& site,
                                    [[maybe_unused]] const GatewayPlaces& places) {
    GatewayServices services;
#ifdef SBUS_WITH_HISTORY
    if (site.history)
        services.push_back(std::make_unique<HistoryService>(*site.history));
#endif
#ifdef SBUS_WITH_MODBUS
    if (site.modbus)
        services.push_back(std::make_unique<ModbusService>(*site.modbus));
#endif
#ifdef SBUS_WITH_MQTT
    if (site.mqtt)
        services.push_back(std::make_unique<MqttService>(*site.mqtt, places.stateDirectory, places.sitePath));
#endif
#ifdef SBUS_WITH_HTTP
    if (site.http) // the last of them: it tells the others' figures
        services.push_back(std::make_unique<HttpService>(*site.http));
#endif
    return services;
}

void checkGatewayServices(const Site& site, Findings& findings) {
    if (site.history)
        checkHistory(*site.history, findings);
    if (site.modbus)
        checkModbus(site, *site.modbus, findings);
    if (site.mqtt)
        checkMqtt(*site.mqtt, findings);
    if (site.http)
        checkHttp(*site.http, findings);
    findings.finish();
}

} // namespace host
