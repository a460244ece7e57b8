#pragma once

#include "runtime/Users.h"

#include <optional>
#include <string>

namespace host {

// The folder of the services of all sites. Root makes it, and in it one folder for each service, named after
// the site file, which belongs to the user that runs it.
constexpr const char* servicesDirectory = "/run/sbus-host";

// That of the service as which this program runs, where $RUNTIME_DIRECTORY names one below `parent`. Empty:
// it runs as no such service.
std::string ownServiceDirectory(const std::string& parent = servicesDirectory);

// The folder of the service that runs a site, and its user, whom root has put in charge of the site.
struct ServiceDirectory {
    std::string path;
    UserId user = 0;
};
// Nothing unless `parent` is root's and nobody else's to write to: anybody could have made a folder in it.
std::optional<ServiceDirectory> findServiceDirectory(const std::string& sitePath,
                                                     const std::string& parent = servicesDirectory,
                                                     UserId root = rootUser);

} // namespace host
