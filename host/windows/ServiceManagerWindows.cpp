#include "ServiceManager.h"

#include "EventLog.h"

#include <QString>

#include <array>
#include <chrono>
#include <memory>
#include <system_error>
#include <thread>
#include <type_traits>

#include <windows.h>

namespace host::servicemanager {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds lookPeriod{100};
// For a service that does not go forward, which tells so every second: that of a busy computer.
constexpr std::chrono::seconds patience{30};

struct CloseService {
    void operator()(SC_HANDLE service) const { CloseServiceHandle(service); }
};
using ServicePtr = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, CloseService>;

std::wstring wide(const std::string& text) {
    return QString::fromStdString(text).toStdWString();
}

std::string reason(DWORD failure) {
    if (failure == ERROR_ACCESS_DENIED)
        return "access is denied; this needs an administrator: open the console with \"Run as "
               "administrator\"";
    return std::system_category().message(static_cast<int>(failure));
}

std::string faultOf(const std::string& name, DWORD failure) {
    if (failure == ERROR_SERVICE_DOES_NOT_EXIST)
        return "there is no service " + name;
    if (failure == ERROR_SERVICE_EXISTS || failure == ERROR_DUPLICATE_SERVICE_NAME)
        return "there is a service " + name + " already; remove it first, or choose another name";
    if (failure == ERROR_SERVICE_MARKED_FOR_DELETE)
        return "service " + name +
               " is about to be removed; close the windows that show it, such as services.msc";
    return "service " + name + ": " + reason(failure);
}

// A service of the system, or why it is not open.
struct Opened {
    ServicePtr service;
    std::string fault;
};

std::wstring commandLineOf(SC_HANDLE service) {
    constexpr DWORD most = 8 * 1024; // bytes, the most that the system gives
    alignas(QUERY_SERVICE_CONFIGW) unsigned char room[most];
    auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(room);
    DWORD needed = 0;
    return QueryServiceConfigW(service, config, most, &needed) == 0 ? std::wstring()
                                                                    : config->lpBinaryPathName;
}

Opened open(const std::string& name, DWORD rights) {
    const ServicePtr manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    if (!manager)
        return {nullptr, "the service manager: " + reason(GetLastError())};
    ServicePtr service(OpenServiceW(manager.get(), wide(name).c_str(), rights | SERVICE_QUERY_CONFIG));
    if (!service)
        return {nullptr, faultOf(name, GetLastError())};
    const std::wstring ours = wide("\" \"service\" \"run\" \"" + name + "\" ");
    if (commandLineOf(service.get()).find(ours) == std::wstring::npos)
        return {nullptr, "service " + name + " is none of sbus-host"};
    return {std::move(service), {}};
}

SERVICE_STATUS_PROCESS statusOf(SC_HANDLE service) {
    SERVICE_STATUS_PROCESS status{};
    DWORD needed = 0;
    QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof status,
                         &needed);
    return status;
}

// Until it has left `phase`, for as long as its checkpoints grow.
SERVICE_STATUS_PROCESS statusAfter(SC_HANDLE service, DWORD phase) {
    SERVICE_STATUS_PROCESS status = statusOf(service);
    auto deadline = Clock::now() + patience;
    while (status.dwCurrentState == phase && Clock::now() < deadline) {
        std::this_thread::sleep_for(lookPeriod);
        const DWORD before = status.dwCheckPoint;
        status = statusOf(service);
        if (status.dwCheckPoint != before)
            deadline = Clock::now() + patience;
    }
    return status;
}

std::string lookAtEvents(const std::string& name) {
    return "; the event log says why: Get-WinEvent -ProviderName " + eventSourceOf(name);
}

std::string stopOpened(SC_HANDLE service, const std::string& name) {
    SERVICE_STATUS status{};
    statusAfter(service, SERVICE_START_PENDING); // it takes no stop before it runs
    if (ControlService(service, SERVICE_CONTROL_STOP, &status) == 0) {
        const DWORD failure = GetLastError();
        if (failure == ERROR_SERVICE_NOT_ACTIVE)
            return {};
        if (failure != ERROR_SERVICE_CANNOT_ACCEPT_CTRL) // it stops already
            return faultOf(name, failure);
    }
    statusAfter(service, SERVICE_RUNNING);
    return statusAfter(service, SERVICE_STOP_PENDING).dwCurrentState == SERVICE_STOPPED
               ? std::string()
               : "service " + name + " does not stop" + lookAtEvents(name);
}

// Windows that do not know a setting run the service without it; Wine is one of them.
std::string change(SC_HANDLE service, DWORD setting, void* value, const char* what, const Tell& tell) {
    if (ChangeServiceConfig2W(service, setting, value) != 0)
        return {};
    const DWORD failure = GetLastError();
    if (failure != ERROR_INVALID_LEVEL && failure != ERROR_CALL_NOT_IMPLEMENTED)
        return std::string("the service manager takes no ") + what + ": " + reason(failure);
    tell(std::string("this system knows no ") + what + " of services; it is left out");
    return {};
}

std::string setFailureActions(SC_HANDLE service, const Tell& tell) {
    std::array<SC_ACTION, restartDelays.size()> restarts{};
    for (std::size_t at = 0; at < restarts.size(); ++at)
        restarts[at] = {SC_ACTION_RESTART,
                        static_cast<DWORD>(std::chrono::milliseconds(restartDelays[at]).count())};
    SERVICE_FAILURE_ACTIONSW actions{};
    actions.dwResetPeriod = static_cast<DWORD>(std::chrono::seconds(failuresAreForgottenAfter).count());
    actions.cActions = static_cast<DWORD>(restarts.size());
    actions.lpsaActions = restarts.data();
    std::string fault =
        change(service, SERVICE_CONFIG_FAILURE_ACTIONS, &actions, "restart after a failure", tell);
    SERVICE_FAILURE_ACTIONS_FLAG alsoByStatus{TRUE};
    if (fault.empty())
        fault = change(service, SERVICE_CONFIG_FAILURE_ACTIONS_FLAG, &alsoByStatus,
                       "restart after an end with a status", tell);
    return fault;
}

std::string configure(SC_HANDLE service, const ServicePlan& plan, const Tell& tell) {
    std::wstring description = wide(plan.description);
    SERVICE_DESCRIPTIONW described{description.data()};
    std::string fault = change(service, SERVICE_CONFIG_DESCRIPTION, &described, "description", tell);
    if (fault.empty())
        fault = setFailureActions(service, tell);
    SERVICE_PRESHUTDOWN_INFO shutdown{
        static_cast<DWORD>(std::chrono::milliseconds(shutdownPatience).count())};
    if (fault.empty())
        fault = change(service, SERVICE_CONFIG_PRESHUTDOWN_INFO, &shutdown, "patience at shutdown", tell);
    wchar_t privileges[] = L"SeChangeNotifyPrivilege\0"; // to pass folders; no other
    SERVICE_REQUIRED_PRIVILEGES_INFOW least{privileges};
    if (fault.empty())
        fault = change(service, SERVICE_CONFIG_REQUIRED_PRIVILEGES_INFO, &least, "list of privileges", tell);
    return fault;
}

} // namespace

std::string install(const ServicePlan& plan, const Tell& tell) {
    const ServicePtr manager(
        OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT | SC_MANAGER_CREATE_SERVICE));
    if (!manager)
        return "the service manager: " + reason(GetLastError());
    const ServicePtr service(
        CreateServiceW(manager.get(), wide(plan.name).c_str(), wide(plan.displayName).c_str(),
                       SERVICE_CHANGE_CONFIG | SERVICE_START | DELETE, SERVICE_WIN32_OWN_PROCESS,
                       SERVICE_AUTO_START, SERVICE_ERROR_NORMAL, wide(plan.commandLine).c_str(), nullptr,
                       nullptr, nullptr, wide(plan.account).c_str(), nullptr));
    if (!service)
        return faultOf(plan.name, GetLastError());
    std::string fault = configure(service.get(), plan, tell);
    if (!fault.empty())
        DeleteService(service.get());
    return fault;
}

std::string remove(const std::string& name) {
    const Opened opened = open(name, SERVICE_QUERY_STATUS | SERVICE_STOP | DELETE);
    if (!opened.fault.empty())
        return opened.fault;
    std::string fault = stopOpened(opened.service.get(), name);
    if (fault.empty() && DeleteService(opened.service.get()) == 0)
        fault = faultOf(name, GetLastError());
    return fault;
}

std::string start(const std::string& name) {
    const Opened opened = open(name, SERVICE_QUERY_STATUS | SERVICE_START);
    if (!opened.fault.empty())
        return opened.fault;
    if (StartServiceW(opened.service.get(), 0, nullptr) == 0) {
        const DWORD failure = GetLastError();
        if (failure != ERROR_SERVICE_ALREADY_RUNNING)
            return faultOf(name, failure);
    }
    const SERVICE_STATUS_PROCESS status = statusAfter(opened.service.get(), SERVICE_START_PENDING);
    if (status.dwCurrentState == SERVICE_RUNNING)
        return {};
    if (status.dwCurrentState != SERVICE_STOPPED)
        return "service " + name + " does not come to run" + lookAtEvents(name);
    return "service " + name + " has ended with status " +
           std::to_string(status.dwWin32ExitCode == ERROR_SERVICE_SPECIFIC_ERROR
                              ? status.dwServiceSpecificExitCode
                              : status.dwWin32ExitCode) +
           lookAtEvents(name);
}

std::string stop(const std::string& name) {
    const Opened opened = open(name, SERVICE_QUERY_STATUS | SERVICE_STOP);
    return opened.fault.empty() ? stopOpened(opened.service.get(), name) : opened.fault;
}

} // namespace host::servicemanager
