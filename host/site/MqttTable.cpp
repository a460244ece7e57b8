#include "MqttTable.h"

#include "ByteSize.h"
#include "TomlTable.h"

#include <filesystem>

namespace host {

namespace {

const std::string urlRemedy = "give the broker, such as \"mqtt://127.0.0.1:1883\", or with TLS "
                              "\"mqtts://broker.plant:8883\"";
const std::string prefixRemedy =
    "write one or more levels of a topic, such as \"sbus\" or \"plant/north\", without + and #";
const std::string layoutRemedy = "write \"plain\", \"batch\" or \"sparkplug\"";
const std::string hostRemedy = "write the id under which the host tells its state, without +, # and /";
const std::string versionRemedy = "write \"5\" or \"3.1.1\"";
const std::string textRemedy = "write a text in quotes";
const std::string fileRemedy =
    "give the path from the root on: a service is rarely started in the folder of its site file";
const std::string keepAliveRemedy = "give whole seconds, from 5s to 12h";
const std::string backlogRemedy = "give a size in quotes, from \"1MB\" to \"1000GB\"";

constexpr std::chrono::seconds shortestKeepAlive{5};
constexpr std::chrono::hours longestKeepAlive{12}; // MQTT has 16 bits of seconds
constexpr std::uint64_t smallestBacklog = 1'000'000;
constexpr std::uint64_t largestBacklog = 1'000'000'000'000;

bool isPrefix(const std::string& text) {
    const std::string levels = "/" + text + "/";
    return text.find_first_of("+#$") == std::string::npos && levels.find("//") == std::string::npos;
}

class MqttReader {
public:
    MqttReader(TomlTable& mqttTable, Findings& siteFindings) : table(mqttTable), findings(siteFindings) {}

    MqttSettings read() {
        settings.place = table.place();
        readUrl();
        readPrefix();
        readChoices();
        readSparkplug();
        readIdentity();
        readNumbers();
        settings.takesCommands = table.flag("commands").value_or(false);
        table.rejectUnknownKeys();
        return settings;
    }

private:
    void readUrl() {
        table.need("url", urlRemedy);
        const std::optional<Field> field = table.text("url", urlRemedy);
        if (!field)
            return;
        if (const std::optional<BrokerUrl> url = parseBrokerUrl(field->text))
            settings.broker = *url;
        else
            findings.error(field->place, "url \"" + field->text + "\" leads to no broker", urlRemedy);
    }

    void readPrefix() {
        const std::optional<Field> field = table.text("prefix", prefixRemedy);
        if (!field)
            return;
        settings.prefix = field->text;
        if (!isPrefix(field->text))
            findings.error(field->place, "prefix \"" + field->text + "\" is no beginning of a topic",
                           prefixRemedy);
    }

    void readChoices() {
        if (const std::optional<Field> layout = table.text("layout", layoutRemedy)) {
            settings.layout = layout->text == "batch"       ? MqttLayout::Batch
                              : layout->text == "sparkplug" ? MqttLayout::Sparkplug
                                                            : MqttLayout::Plain;
            if (settings.layout == MqttLayout::Plain && layout->text != "plain")
                findings.error(layout->place, "layout \"" + layout->text + "\" is not known", layoutRemedy);
        }
        if (const std::optional<Field> version = table.text("version", versionRemedy)) {
            settings.version = version->text == "3.1.1" ? MqttVersion::V311 : MqttVersion::V5;
            if (version->text != "3.1.1" && version->text != "5")
                findings.error(version->place, "version \"" + version->text + "\" is not known",
                               versionRemedy);
        }
    }

    void readSparkplug() {
        const bool isSparkplug = settings.layout == MqttLayout::Sparkplug;
        if (isSparkplug && settings.prefix.find('/') != std::string::npos)
            findings.error(table.placeOf("prefix"),
                           "prefix \"" + settings.prefix + "\" is no name for a group of Sparkplug",
                           "write one level of a topic, such as \"plant\"");
        const std::optional<Field> primary = table.text("primary_host", hostRemedy);
        if (!primary)
            return;
        settings.primaryHost = primary->text;
        if (!isSparkplug)
            findings.error(primary->place, "primary_host without Sparkplug",
                           "write layout = \"sparkplug\", or leave primary_host out");
        if (primary->text.find_first_of("+#/") != std::string::npos)
            findings.error(primary->place, "primary_host \"" + primary->text + "\" is no id of a host",
                           hostRemedy);
    }

    std::string readPath(const std::string& key) {
        const std::optional<Field> field = table.text(key, fileRemedy);
        if (!field)
            return {};
        if (std::filesystem::u8path(field->text).is_relative())
            findings.error(field->place, key + " \"" + field->text + "\" is no full path", fileRemedy);
        if (!settings.broker.isSecure)
            findings.error(field->place, key + " for a connection without TLS",
                           "write the url with mqtts://, or leave " + key + " out");
        return field->text;
    }

    void readIdentity() {
        settings.user = readText("user");
        settings.clientId = readText("client_id");
        settings.password = readSecretSource(table, "password", findings);
        settings.caFile = readPath("ca_file");
        settings.certificate = readPath("certificate");
        settings.keyFile = readPath("key_file");
        if (settings.certificate.empty() != settings.keyFile.empty())
            findings.error(table.placeOf(settings.certificate.empty() ? "key_file" : "certificate"),
                           "a certificate takes a key_file, and a key_file a certificate",
                           "give both, or none of them");
        if (settings.password && settings.user.empty())
            findings.error(settings.password->place, "a password without a user", "give the user, too");
    }

    std::string readText(const std::string& key) {
        const std::optional<Field> field = table.text(key, textRemedy);
        return field ? field->text : std::string();
    }

    void readNumbers() {
        settings.qos = static_cast<int>(table.integer("qos", 0, 1).value_or(settings.qos));
        if (const std::optional<std::chrono::milliseconds> time = table.duration("keep_alive")) {
            settings.keepAlive = std::chrono::duration_cast<std::chrono::seconds>(*time);
            if (settings.keepAlive != *time || *time < shortestKeepAlive || *time > longestKeepAlive)
                findings.error(table.placeOf("keep_alive"), "keep_alive is out of its range",
                               keepAliveRemedy);
        }
        if (const std::optional<Field> size = table.text("backlog", backlogRemedy)) {
            const std::optional<std::uint64_t> bytes = parseByteSize(size->text);
            settings.backlogBytes = bytes.value_or(settings.backlogBytes);
            if (!bytes || *bytes < smallestBacklog || *bytes > largestBacklog)
                findings.error(size->place, "backlog \"" + size->text + "\" is no size for it",
                               backlogRemedy);
        }
    }

    TomlTable& table;
    Findings& findings;
    MqttSettings settings;
};

void warn(const MqttSettings& settings, Findings& findings) {
    const bool isOpenToListeners = !settings.broker.isSecure && !settings.broker.isLoopback();
    const std::string url = toText(settings.broker);
    if (settings.password && isOpenToListeners)
        findings.warning(settings.password->place,
                         "the password goes to " + url + " unencrypted, for everybody on the way to read",
                         "write the url with mqtts://");
    if (!settings.takesCommands)
        return;
    if (isOpenToListeners)
        findings.warning(settings.place,
                         "commands come from " + url +
                             " without TLS: whoever is on the way can command the plant",
                         "write the url with mqtts://");
    if (!settings.password && settings.certificate.empty())
        findings.warning(settings.place,
                         "commands come from " + url +
                             ", which asks nobody for a password: whoever can connect to the broker can "
                             "command the plant",
                         "give user and password_file, and tell the broker who may publish below \"" +
                             settings.prefix + "\"");
}

} // namespace

std::optional<MqttSettings> readMqttTable(TomlTable& root, const std::string& file, Findings& findings) {
    const toml::table* const source = root.subTable("mqtt");
    if (source == nullptr)
        return std::nullopt;
    TomlTable table(*source, file, findings);
    MqttSettings settings = MqttReader(table, findings).read();
    warn(settings, findings);
    return settings;
}

} // namespace host
