#include "OwnFolderWindows.h"

#include "AccountsWindows.h"

#include <QDir>
#include <QString>

#include <system_error>

#include <windows.h>

#include <aclapi.h>

namespace host {

namespace {

std::string reason(DWORD failure) {
    return std::system_category().message(static_cast<int>(failure));
}

std::wstring nativePath(const std::string& path) {
    return QDir::toNativeSeparators(QString::fromStdString(path)).toStdWString();
}

struct Handle {
    explicit Handle(HANDLE opened) : get(opened) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (get != INVALID_HANDLE_VALUE)
            CloseHandle(get);
    }
    const HANDLE get;
};

// The folder itself, opened and not only named: what is judged is what is changed.
std::string closeFolder(const std::string& path, const accounts::Descriptor& closed) {
    const std::string name = "directory " + path;
    const Handle folder(CreateFileW(nativePath(path).c_str(), READ_CONTROL | WRITE_DAC | FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                                    nullptr));
    if (folder.get == INVALID_HANDLE_VALUE)
        return name + " cannot be opened: " + reason(GetLastError());
    BY_HANDLE_FILE_INFORMATION found{};
    if (GetFileInformationByHandle(folder.get, &found) == 0)
        return name + " cannot be looked at: " + reason(GetLastError());
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ||
        (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return path + " is no directory";
    const std::string owner = accounts::ownerOfFile(folder.get);
    if (owner != accounts::ownSid() && !accounts::isSystemOrAdministrators(owner))
        return name + " belongs to another user (" + accounts::nameOf(owner) + ")";
    BOOL isThere = FALSE;
    BOOL isDefault = FALSE;
    PACL list = nullptr;
    GetSecurityDescriptorDacl(closed.get(), &isThere, &list, &isDefault);
    const DWORD failure = SetSecurityInfo(folder.get, SE_FILE_OBJECT,
                                          DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                                          nullptr, nullptr, list, nullptr);
    return failure == ERROR_SUCCESS ? std::string()
                                    : name + " cannot be closed to other users: " + reason(failure);
}

} // namespace

std::string makeOwnFolder(const std::string& path) {
    return makeFolder(path, accounts::folderForOwnUser());
}

std::string makeFolder(const std::string& path, const std::string& descriptor) {
    const accounts::Descriptor closed(descriptor);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, closed.get(), FALSE};
    if (CreateDirectoryW(nativePath(path).c_str(), &attributes) != 0)
        return {};
    const DWORD failure = GetLastError();
    return failure == ERROR_ALREADY_EXISTS ? closeFolder(path, closed)
                                           : "directory " + path + " cannot be made: " + reason(failure);
}

} // namespace host
