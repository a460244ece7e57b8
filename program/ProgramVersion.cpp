#include "ProgramVersion.h"

namespace release {

std::string versionText(const std::string& program) {
    return program + ' ' + version() + '\n' + commit();
}

} // namespace release
