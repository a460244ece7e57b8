#pragma once

#include <HalvexDriverComponent/CReply.h>

namespace sbus {

// Takes the reference that the engine gives back when it completes the reply. It may do so on another thread
// as soon as it has the request, so a request is given its reply in this way before it is handed over. Null
// stays null.
inline CReply* takenOver(CReply* reply) {
    if (reply != nullptr)
        reply->addRefer();
    return reply;
}

} // namespace sbus
