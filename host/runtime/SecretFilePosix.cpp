#include "Secret.h"

#include <sys/stat.h>

namespace host {

namespace {

constexpr mode_t readableByGroup = 0070;
constexpr mode_t readableByAll = 0007;
constexpr uid_t root = 0;

} // namespace

std::string findSecretFileFault(const std::string& path) {
    struct stat file = {};
    if (::stat(path.c_str(), &file) != 0)
        return {}; // reading it tells why
    const mode_t forbidden = file.st_uid == root ? readableByAll : readableByAll | readableByGroup;
    if ((file.st_mode & forbidden) == 0)
        return {};
    return "the file \"" + path +
           "\" can be read or changed by other users; take that from them: chmod 600 " + path;
}

} // namespace host
