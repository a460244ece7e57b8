#include "HttpTable.h"

#include <filesystem>

namespace host {

namespace {

const std::string certificateRemedy = "give the full path of a certificate in PEM";

std::optional<HttpTls> readTls(TomlTable& table, Findings& findings) {
    const std::optional<Field> certificate = table.text("certificate", certificateRemedy);
    const std::optional<SecretSource> key = readSecretSource(table, "key", findings);
    if (certificate && std::filesystem::u8path(certificate->text).is_relative())
        findings.error(certificate->place, "certificate \"" + certificate->text + "\" is no full path",
                       certificateRemedy);
    if (certificate && !key)
        findings.error(certificate->place, "a certificate without its key",
                       "name the key's file in key_file");
    if (key && !certificate)
        findings.error(key->place, "a key without its certificate", "name the certificate's file");
    if (!certificate || !key)
        return std::nullopt;
    return HttpTls{certificate->text, *key};
}

void warnOfOpenAddress(const HttpSettings& settings, Findings& findings) {
    if (settings.listen.isLoopback())
        return;
    const std::string address = "listen \"" + toText(settings.listen) + "\" is open to other computers ";
    if (!settings.password)
        findings.warning(settings.listen.place, address + "without a password",
                         "give password_file, or listen on 127.0.0.1");
    if (!settings.tls)
        findings.warning(settings.listen.place, address + "without TLS: whoever listens in reads all",
                         "give certificate and key_file, or listen on 127.0.0.1");
}

} // namespace

std::optional<HttpSettings> readHttpTable(TomlTable& root, const std::string& file, Findings& findings) {
    const toml::table* const source = root.subTable("http");
    if (source == nullptr)
        return std::nullopt;
    TomlTable table(*source, file, findings);
    HttpSettings settings;
    const std::optional<ListenAddress> address = readListenAddress(table, "127.0.0.1:8080", findings);
    settings.hasPoints = table.flag("points").value_or(false);
    settings.password = readSecretSource(table, "password", findings);
    settings.tls = readTls(table, findings);
    table.rejectUnknownKeys();
    if (address) {
        settings.listen = *address;
        warnOfOpenAddress(settings, findings);
    }
    return settings;
}

} // namespace host
