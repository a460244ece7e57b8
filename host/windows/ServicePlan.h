#pragma once

#include <array>
#include <chrono>
#include <string>
#include <vector>

// What the service manager of Windows is told of a service that runs a site. Pure: texts in, texts out.
namespace host {

struct ServicePlan {
    std::string name;
    std::string displayName;
    std::string description;
    std::string account;     // made by the system for this service alone, without rights of its own
    std::string commandLine; // every word of it in quotes
    std::string eventSource;
};

// The paths are full ones. `runArguments` are those of `sbus-host run` behind the site file.
ServicePlan planService(const std::string& name, const std::string& program, const std::string& sitePath,
                        const std::vector<std::string>& runArguments);

// Empty, or why no service can have this name.
std::string serviceNameFault(const std::string& name);
// Under which its events are found.
std::string eventSourceOf(const std::string& serviceName);
// Of the account that the system makes for a service, as text: "S-1-5-80-...".
std::string serviceSid(const std::string& serviceName);

// After a service has failed for the first, the second, and each further time.
constexpr std::array<std::chrono::seconds, 3> restartDelays{std::chrono::seconds(5), std::chrono::seconds(30),
                                                            std::chrono::seconds(60)};
// Without a failure, until the next one counts as the first again.
constexpr std::chrono::hours failuresAreForgottenAfter{24};
// How long a computer that is shut down waits for the service: for running pulses to be ended.
constexpr std::chrono::seconds shutdownPatience{60};

} // namespace host
