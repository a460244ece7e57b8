#pragma once

#include "ListenAddress.h"
#include "SecretSource.h"

#include <cstddef>
#include <optional>
#include <string>

namespace host {

// What proves to clients that the server is the one they mean, and keeps what is said between them.
struct HttpTls {
    std::string certificate; // the full path of a PEM file, with those that vouch for it
    SecretSource key;        // in PEM, too
};

// The HTTP server of a site, the table [http].
struct HttpSettings {
    ListenAddress listen;
    bool hasPoints = false;               // the metrics hold every point
    std::optional<SecretSource> password; // of those who may read the metrics; none: everybody may
    std::optional<HttpTls> tls;
};

// Clients that are connected at once.
constexpr std::size_t mostHttpClients = 256;

} // namespace host
