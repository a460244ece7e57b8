#include "SecretSource.h"

#include "TomlTable.h"

#include <filesystem>

namespace host {

std::optional<SecretSource> readSecretSource(TomlTable& table, const std::string& name, Findings& findings) {
    const std::string fileKey = name + "_file";
    const std::string variableKey = name + "_env";
    const std::string remedy = "write it into a file that nobody else can read, and name that in " + fileKey;
    if (table.textOrNumber(name))
        findings.error(table.placeOf(name), "a " + name + " in the site file, which others can read", remedy);
    const std::optional<Field> file = table.text(fileKey, "name a file in quotes");
    const std::optional<Field> variable =
        table.text(variableKey, "name a variable of the environment in quotes");
    if (file && variable)
        findings.error(variable->place, fileKey + " and " + variableKey + " in one table",
                       "keep one of the two");
    if (file && std::filesystem::u8path(file->text).is_relative())
        findings.error(
            file->place, fileKey + " \"" + file->text + "\" is no full path",
            "give the path from the root on: a service is rarely started in the folder of its site file");
    if (file)
        return SecretSource{file->text, {}, file->place};
    if (variable)
        return SecretSource{{}, variable->text, variable->place};
    return std::nullopt;
}

} // namespace host
