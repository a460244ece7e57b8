#include "Admission.h"

namespace host {

Admission judgeClient(const std::optional<Peer>& peer, UserId user,
                      const std::optional<AdmittedGroup>& group) {
    if (!peer)
        return Admission::Refused;
    if (isUserOrRoot(*peer, user))
        return Admission::Commands;
    if (!group || !isMember(*peer, group->id))
        return Admission::Refused;
    return group->access == ControlAccess::Commands ? Admission::Commands : Admission::Reads;
}

} // namespace host
