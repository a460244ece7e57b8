#pragma once

#include <functional>

class CLink;
class SBusDelayedQueue;
class SBusProtocolBase;
class SBusRtu;

// What a test does when the channel calls its protocol object, an RTU or its delayed queue by an operation
// that is not virtual. Each function runs just before the operation, on the thread that calls it; the
// operation always runs. Set before the channel's thread starts.
struct EngineCalls {
    std::function<void(CLink*)> setLink;
    std::function<void(SBusRtu&, SBusProtocolBase*, SBusDelayedQueue*)> attachProtocol;
    std::function<void(SBusDelayedQueue*)> destroyQueue;
};

extern EngineCalls engineCalls;
