#include "ScanReply.h"

namespace host {

bool isPresent(const ScanReply& reply) {
    return reply.kind == ScanReply::Kind::Answers || reply.kind == ScanReply::Kind::Refuses;
}

ScanReply joined(const ScanReply& first, const ScanReply& again) {
    if (isPresent(again))
        return again;
    ScanReply reply = first;
    if (isPresent(first))
        reply.kind = ScanReply::Kind::Once;
    return reply;
}

} // namespace host
