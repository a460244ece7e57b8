#include "ControlTable.h"

#include <filesystem>

namespace host {

namespace {

#ifdef _WIN32
const std::string socketRemedy = R"(name a pipe, such as '\\.\pipe\sbus-host-site')";

// Pipes lie beside all drives.
bool isFullPath(const std::string& path) {
    return path.rfind(R"(\\.\pipe\)", 0) == 0 || std::filesystem::u8path(path).is_absolute();
}
#else
const std::string socketRemedy =
    "name a file in a folder that the host's user can write to, such as \"/run/sbus-host/site.sock\"";

bool isFullPath(const std::string& path) {
    return std::filesystem::u8path(path).is_absolute();
}
#endif
const std::string groupRemedy = "write the name of a group in quotes";
const std::string accessRemedy = "write \"read\" or \"commands\"";

void readAccess(TomlTable& table, ControlSettings& settings, Findings& findings) {
    const std::optional<Field> access = table.text("access", accessRemedy);
    if (!access)
        return;
    settings.access = access->text == "commands" ? ControlAccess::Commands : ControlAccess::Read;
    if (access->text != "read" && access->text != "commands")
        findings.error(access->place, "access \"" + access->text + "\" is not known", accessRemedy);
    if (settings.group.empty())
        findings.error(access->place, "access without a group", "name the group that it is for");
}

} // namespace

ControlSettings readControlTable(TomlTable& root, const std::string& file, Findings& findings) {
    ControlSettings settings;
    const toml::table* const source = root.subTable("control");
    if (source == nullptr)
        return settings;
    TomlTable table(*source, file, findings);
    if (const std::optional<Field> socket = table.text("socket", socketRemedy)) {
        settings.socket = socket->text;
        // Host and client are rarely started in the same folder.
        if (!isFullPath(socket->text))
            findings.error(socket->place, "socket \"" + socket->text + "\" is no full path", socketRemedy);
    }
    if (const std::optional<Field> group = table.text("group", groupRemedy)) {
        settings.group = group->text;
        settings.groupPlace = group->place;
    }
    readAccess(table, settings, findings);
    table.rejectUnknownKeys();
    return settings;
}

} // namespace host
