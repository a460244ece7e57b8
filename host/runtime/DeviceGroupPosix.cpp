#include "DeviceGroup.h"

#include <grp.h>
#include <sys/stat.h>

namespace host {

std::string groupThatMayOpen(const std::string& device) {
    struct stat status {};
    constexpr mode_t readAndWrite = S_IRGRP | S_IWGRP;
    if (stat(device.c_str(), &status) != 0 || (status.st_mode & readAndWrite) != readAndWrite)
        return {};
    group entry{};
    group* found = nullptr;
    char names[4096]; // of the group and its members; longer lists are of no help to anybody
    if (getgrgid_r(status.st_gid, &entry, names, sizeof names, &found) != 0 || found == nullptr)
        return {};
    return found->gr_name;
}

} // namespace host
