#include "ServiceCommandWindows.h"

#include "CheckCommand.h"
#include "RunArguments.h"
#include "services/console/EventStream.h"
#include "services/console/Journal.h"
#include "windows/EventLog.h"
#include "windows/ServiceFolders.h"
#include "windows/ServiceManager.h"
#include "windows/ServiceSession.h"

#include <ControlCharacters.h>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <exception>
#include <iostream>

namespace host {

namespace {

void tell(const std::string& text) {
    std::cout << text::printable(text) << '\n';
}

ExitStatus judge(const std::string& fault, const std::string& success) {
    if (fault.empty()) {
        tell(success);
        return ExitStatus::Good;
    }
    std::cerr << "sbus-host: " << text::printable(fault) << '\n';
    return ExitStatus::Configuration;
}

std::string nativePath(const QString& path) {
    return QDir::toNativeSeparators(path).toStdString();
}

ServicePlan planOf(const std::string& name, const RunOptions& options) {
    RunOptions full = options;
    if (full.stateDirectory.empty())
        full.stateDirectory = servicefolders::stateFolderOf(name);
    const QString site = QFileInfo(QString::fromStdString(options.sitePath)).absoluteFilePath();
    return planService(name, nativePath(QCoreApplication::applicationFilePath()), nativePath(site),
                       unattendedArguments(full));
}

std::string prepareFolders(const std::string& name, const RunOptions& options) {
    std::string fault;
    if (options.stateDirectory.empty())
        fault = servicefolders::makeStateFolder(name);
    if (!fault.empty() || !options.log)
        return fault;
    const servicefolders::Made logs = servicefolders::makeLogFolder(options.log->directory, name);
    if (!logs.isNew)
        tell("log directory " + options.log->directory +
             " is there already; let the service write to it with: icacls \"" + options.log->directory +
             "\" /grant \"NT SERVICE\\" + name + ":(OI)(CI)M\"");
    return logs.fault;
}

void reportErrorsAsEvents(const std::string& name) {
    // Threads that write may outlive everything else.
    static auto* const log = new EventLog(eventSourceOf(name));
    static auto* const events =
        new EventStream([](Severity severity, const std::string& text) { log->report(severity, text); });
    std::cerr.rdbuf(events);
}

ExitStatus runAsService(ServiceSession& session, const RunOptions& options) {
    RunOptions unattended = options;
    unattended.format = OutputFormat::Messages;
    unattended.haveStarted = [&session, &options] {
        session.tellRunning();
        std::cerr << journal::mark(Severity::Note) + "all lines of " + text::printable(options.sitePath) +
                         " are started\n";
    };
    try {
        return runSite(unattended);
    } catch (const std::exception& failure) {
        std::cerr << journal::mark(Severity::Error) + text::printable(failure.what()) + '\n';
        return ExitStatus::Configuration;
    }
}

} // namespace

ExitStatus installService(const std::string& name, const RunOptions& options) {
    const ExitStatus checked = checkSiteFile(options.sitePath);
    if (checked != ExitStatus::Good)
        return checked;
    const ServicePlan plan = planOf(name, options);
    std::string fault = servicemanager::install(plan, tell);
    if (!fault.empty())
        return judge(fault, {});
    fault = EventLog::addSource(plan.eventSource, nativePath(QCoreApplication::applicationFilePath()));
    if (fault.empty())
        fault = prepareFolders(name, options);
    if (!fault.empty())
        removeService(name);
    return judge(fault, "service " + name + " is installed, and runs as " + plan.account +
                            "; start it with: sbus-host service start " + name);
}

ExitStatus removeService(const std::string& name) {
    const std::string fault = servicemanager::remove(name);
    if (fault.empty()) {
        EventLog::removeSource(eventSourceOf(name));
        servicefolders::removeStateFolder(name);
    }
    return judge(fault, "service " + name + " is removed");
}

ExitStatus startService(const std::string& name) {
    return judge(servicemanager::start(name), "service " + name + " runs");
}

ExitStatus stopService(const std::string& name) {
    return judge(servicemanager::stop(name), "service " + name + " has stopped");
}

ExitStatus runService(const std::string& name, const RunOptions& options) {
    ServiceSession session;
    const std::string fault = session.begin(name);
    if (!fault.empty())
        return judge(fault, {});
    reportErrorsAsEvents(name);
    const ExitStatus status = runAsService(session, options);
    std::cerr << journal::mark(Severity::Note) + "the service ends with status " +
                     std::to_string(static_cast<int>(status)) + '\n';
    session.end(static_cast<unsigned>(status));
    return status;
}

} // namespace host
