#include "AccountsWindows.h"

#include <QString>

#include <memory>
#include <stdexcept>
#include <vector>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>
#include <shellapi.h>

namespace host::accounts {

namespace {

const char* const systemSid = "S-1-5-18";
const char* const administratorsSid = "S-1-5-32-544";
const QString serviceDomain = QStringLiteral("NT SERVICE");

struct FreeLocally {
    void operator()(void* memory) const { LocalFree(memory); }
};
template <typename T>
using Local = std::unique_ptr<T, FreeLocally>;

struct CloseToken {
    void operator()(void* token) const { CloseHandle(token); }
};
struct CloseService {
    void operator()(SC_HANDLE service) const { CloseServiceHandle(service); }
};
using ServicePtr = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, CloseService>;

std::string toText(PSID sid) {
    wchar_t* text = nullptr;
    if (ConvertSidToStringSidW(sid, &text) == 0)
        return {};
    const Local<wchar_t> owned(text);
    return QString::fromWCharArray(text).toStdString();
}

std::string ownerOf(HANDLE object, SE_OBJECT_TYPE kind) {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetSecurityInfo(object, kind, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr,
                        &descriptor) != ERROR_SUCCESS)
        return {};
    const Local<void> owned(descriptor);
    return owner == nullptr ? std::string() : toText(owner);
}

// Both parts are empty where no name belongs to the SID.
struct AccountName {
    QString domain;
    QString name;
};

AccountName lookUp(const std::string& sidText) {
    PSID sid = nullptr;
    if (ConvertStringSidToSidW(QString::fromStdString(sidText).toStdWString().c_str(), &sid) == 0)
        return {};
    const Local<void> owned(sid);
    constexpr DWORD longest = 512; // letters; names have 256 at most
    std::vector<wchar_t> name(longest);
    std::vector<wchar_t> domain(longest);
    DWORD nameLength = longest;
    DWORD domainLength = longest;
    SID_NAME_USE use{};
    if (LookupAccountSidW(nullptr, sid, name.data(), &nameLength, domain.data(), &domainLength, &use) == 0)
        return {};
    return {QString::fromWCharArray(domain.data()), QString::fromWCharArray(name.data())};
}

// Empty when there is no such service, or it may not be looked at.
QString commandLineOfService(const QString& name) {
    const ServicePtr manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    if (!manager)
        return {};
    const ServicePtr service(OpenServiceW(manager.get(), name.toStdWString().c_str(), SERVICE_QUERY_CONFIG));
    if (!service)
        return {};
    constexpr DWORD most = 8 * 1024; // bytes, the most that the system gives
    alignas(QUERY_SERVICE_CONFIGW) unsigned char room[most];
    auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(room);
    DWORD needed = 0;
    return QueryServiceConfigW(service.get(), config, most, &needed) == 0
               ? QString()
               : QString::fromWCharArray(config->lpBinaryPathName);
}

} // namespace

std::string ownSid() {
    HANDLE opened = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened) != 0) {
        const std::unique_ptr<void, CloseToken> token(opened);
        alignas(TOKEN_USER) unsigned char room[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
        DWORD length = 0;
        if (GetTokenInformation(opened, TokenUser, room, sizeof room, &length) != 0) {
            std::string text = toText(reinterpret_cast<TOKEN_USER*>(room)->User.Sid);
            if (!text.empty())
                return text;
        }
    }
    throw std::runtime_error("the system does not tell as which user this program runs");
}

std::string ownerOfPipe(void* pipe) {
    return ownerOf(pipe, SE_KERNEL_OBJECT);
}

std::string ownerOfFile(void* file) {
    return ownerOf(file, SE_FILE_OBJECT);
}

std::string nameOf(const std::string& sid) {
    const AccountName account = lookUp(sid);
    return account.name.isEmpty() ? sid : (account.domain + QLatin1Char('\\') + account.name).toStdString();
}

bool isSystemOrAdministrators(const std::string& sid) {
    return sid == systemSid || sid == administratorsSid;
}

// Services have accounts of their own names, which nobody else gets; what a service runs is an
// administrator's to say.
bool isOfHostService(const std::string& sid) {
    const AccountName account = lookUp(sid);
    if (account.domain.compare(serviceDomain, Qt::CaseInsensitive) != 0)
        return false;
    const std::wstring commandLine = commandLineOfService(account.name).toStdWString();
    int count = 0;
    const Local<wchar_t*> words(commandLine.empty() ? nullptr
                                                    : CommandLineToArgvW(commandLine.c_str(), &count));
    constexpr int fewest = 4; // PROGRAM service run NAME
    return words && count >= fewest && std::wstring(words.get()[1]) == L"service" &&
           std::wstring(words.get()[2]) == L"run" &&
           QString::fromWCharArray(words.get()[3]).compare(account.name, Qt::CaseInsensitive) == 0;
}

Descriptor::Descriptor(const std::string& text) {
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(
            QString::fromStdString(text).toStdWString().c_str(), SDDL_REVISION_1, &descriptor, nullptr) == 0)
        throw std::runtime_error("the system takes no security descriptor " + text);
}

Descriptor::~Descriptor() {
    LocalFree(descriptor);
}

std::string pipeForOwnUser() {
    const std::string own = ownSid();
    return "O:" + own + "D:P(D;;GA;;;NU)(A;;GA;;;" + own + ")(A;;GRGW;;;SY)(A;;GRGW;;;BA)";
}

std::string folderForOwnUser() {
    const std::string own = ownSid();
    return "O:" + own + "D:P(A;OICI;FA;;;" + own + ")(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";
}

} // namespace host::accounts
