#include "PrivateDirectory.h"

#include "runtime/OwnFolderWindows.h"

namespace host {

std::string makePrivateDirectory(const std::string& path, std::optional<GroupId>) {
    return makeOwnFolder(path);
}

} // namespace host
