#pragma once

#include "services/Service.h"
#include "site/Finding.h"
#include "site/Site.h"

#include <memory>
#include <string>
#include <vector>

namespace host {

// The services that a table of the site file switches on. Each is built where its option of CMake is on
// (SBUS_WITH_...), with a library that nothing else needs; this is the one place that knows which are.
using GatewayServices = std::vector<std::unique_ptr<Service>>;

// What they take from the command line.
struct GatewayPlaces {
    std::string sitePath;
    std::string stateDirectory; // of what outlives the process; empty: the user's usual one
};

// Those of the site's tables. None is started.
GatewayServices makeGatewayServices(const Site& site, const GatewayPlaces& places);

// Tells an error for each table whose service this program was built without, and what else can be said of
// the tables only here: a secret that cannot be read.
void checkGatewayServices(const Site& site, Findings& findings);

} // namespace host
