#include "EventLog.h"

#include <QDir>
#include <QString>

#include <system_error>

#include <windows.h>

namespace host {

namespace {

// As in install/events.mc.
constexpr DWORD noteEvent = 1;
constexpr DWORD warningEvent = 2;
constexpr DWORD errorEvent = 3;

constexpr int longestText = 31'000; // letters; the log takes 31,839

std::wstring wide(const std::string& text) {
    return QString::fromStdString(text).toStdWString();
}

std::wstring keyOf(const std::string& source) {
    return wide(R"(SYSTEM\CurrentControlSet\Services\EventLog\Application\)" + source);
}

WORD typeOf(Severity severity) {
    return severity == Severity::Error     ? EVENTLOG_ERROR_TYPE
           : severity == Severity::Warning ? EVENTLOG_WARNING_TYPE
                                           : EVENTLOG_INFORMATION_TYPE;
}

DWORD eventOf(Severity severity) {
    return severity == Severity::Error     ? errorEvent
           : severity == Severity::Warning ? warningEvent
                                           : noteEvent;
}

} // namespace

EventLog::EventLog(const std::string& source) : log(RegisterEventSourceW(nullptr, wide(source).c_str())) {}

EventLog::~EventLog() {
    if (log != nullptr)
        DeregisterEventSource(log);
}

void EventLog::report(Severity severity, const std::string& text) {
    const std::wstring letters = QString::fromStdString(text).left(longestText).toStdWString();
    const wchar_t* strings[] = {letters.c_str()};
    if (log != nullptr)
        ReportEventW(log, typeOf(severity), 0, eventOf(severity), nullptr, 1, 0, strings, nullptr);
}

std::string EventLog::addSource(const std::string& source, const std::string& program) {
    HKEY key = nullptr;
    LONG failure = RegCreateKeyExW(HKEY_LOCAL_MACHINE, keyOf(source).c_str(), 0, nullptr,
                                   REG_OPTION_NON_VOLATILE, KEY_SET_VALUE, nullptr, &key, nullptr);
    if (failure == ERROR_SUCCESS) {
        const std::wstring file = QDir::toNativeSeparators(QString::fromStdString(program)).toStdWString();
        const DWORD types = EVENTLOG_ERROR_TYPE | EVENTLOG_WARNING_TYPE | EVENTLOG_INFORMATION_TYPE;
        failure =
            RegSetValueExW(key, L"EventMessageFile", 0, REG_SZ, reinterpret_cast<const BYTE*>(file.c_str()),
                           static_cast<DWORD>((file.size() + 1) * sizeof(wchar_t)));
        if (failure == ERROR_SUCCESS)
            failure = RegSetValueExW(key, L"TypesSupported", 0, REG_DWORD,
                                     reinterpret_cast<const BYTE*>(&types), sizeof types);
        RegCloseKey(key);
    }
    return failure == ERROR_SUCCESS ? std::string()
                                    : "the event log takes no source " + source + ": " +
                                          std::system_category().message(static_cast<int>(failure));
}

void EventLog::removeSource(const std::string& source) {
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, keyOf(source).c_str());
}

} // namespace host
