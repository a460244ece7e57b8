#include "ControlGroup.h"

#include "runtime/Users.h"

namespace host {

void checkControlGroup(const Site& site, Findings& findings) {
    const std::string& group = site.control.group;
    if (!group.empty() && !findGroup(group))
        findings.error(site.control.groupPlace, "there is no group \"" + group + "\" on this system",
                       groupRemedy());
}

} // namespace host
