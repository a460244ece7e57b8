#pragma once

#include "Finding.h"

#include <optional>
#include <string>

namespace host {

class TomlTable;

// Where a secret of a service lies. A site file is read, copied and kept by many, so it only tells where.
struct SecretSource {
    std::string file;     // its full path, or empty
    std::string variable; // of the environment, or empty
    Place place;
};

// Reads the keys "NAME_file" and "NAME_env" of a service's table, of which there may be one. The key "NAME"
// itself, a secret within the site file, is an error. Nothing when there is none of them.
std::optional<SecretSource> readSecretSource(TomlTable& table, const std::string& name, Findings& findings);

} // namespace host
