#include "ServiceFolders.h"

#include "ServicePlan.h"
#include "runtime/OwnFolderWindows.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <stdexcept>

#include <windows.h>

#include <shlobj.h>

namespace host::servicefolders {

namespace {

const char* const administratorsAlone = "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";

// The service's account may read, write and remove, and change no rights.
std::string sharedWith(const std::string& serviceName) {
    return administratorsAlone + ("(A;OICI;0x1301bf;;;" + serviceSid(serviceName) + ")");
}

// Everybody may pass on the way to a folder in it, whose rights are its own.
std::string passable() {
    return administratorsAlone + std::string("(A;;0x1200a9;;;BU)");
}

std::string baseFolder() {
    wchar_t path[MAX_PATH] = {};
    if (SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path) != S_OK)
        throw std::runtime_error("the system does not tell where programs keep their data");
    return QDir::fromNativeSeparators(QString::fromWCharArray(path)).toStdString() + "/sbus-host";
}

} // namespace

std::string stateFolderOf(const std::string& serviceName) {
    return baseFolder() + '/' + serviceName;
}

std::string makeStateFolder(const std::string& serviceName) {
    const std::string fault = makeFolder(baseFolder(), passable());
    return fault.empty() ? makeFolder(stateFolderOf(serviceName), sharedWith(serviceName)) : fault;
}

void removeStateFolder(const std::string& serviceName) {
    const QString folder = QString::fromStdString(stateFolderOf(serviceName));
    QDir().rmdir(folder + QStringLiteral("/sbus-host"));
    QDir().rmdir(folder);
    QDir().rmdir(QString::fromStdString(baseFolder()));
}

Made makeLogFolder(const std::string& path, const std::string& serviceName) {
    if (QFileInfo::exists(QString::fromStdString(path)))
        return {};
    QDir().mkpath(QFileInfo(QString::fromStdString(path)).absolutePath());
    return {true, makeFolder(path, sharedWith(serviceName))};
}

} // namespace host::servicefolders
