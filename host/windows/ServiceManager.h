#pragma once

#include "ServicePlan.h"

#include <functional>
#include <string>

// The service manager of Windows, asked by an administrator. Each call tells a fault: what happened and what
// to check; empty when all went well. Services that run something else than sbus-host are left alone.
namespace host::servicemanager {

using Tell = std::function<void(const std::string&)>;

// Makes a service that starts with the system, and again after a failure. `tell` hears of settings that this
// system does not have.
std::string install(const ServicePlan& plan, const Tell& tell);
// Stops the service first.
std::string remove(const std::string& name);

// Wait until it runs, or has stopped, for as long as it goes forward.
std::string start(const std::string& name);
std::string stop(const std::string& name);

} // namespace host::servicemanager
