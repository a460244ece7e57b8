#pragma once

#include "site/SecretSource.h"

#include <optional>
#include <string>

namespace host {

// A secret, or why there is none: what happened and what to check.
struct Secret {
    std::optional<std::string> text; // without the end of its line
    std::string fault;
};

// Reads it anew at each call. A file that others than its owner can read is refused, but for one of root's
// that a group may read, which is how a system gives a secret to a service. At most 64 KiB; a variable that
// is not set, and a file or variable without anything in it, are faults. Any thread.
Secret readSecret(const SecretSource& source);

// Part of readSecret(): empty, or why the file at `path` is not to be trusted with a secret. Where the system
// keeps rights in lists of access, which users rarely see, every file is.
std::string findSecretFileFault(const std::string& path);

} // namespace host
