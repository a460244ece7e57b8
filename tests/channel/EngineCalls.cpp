#include "EngineCalls.h"

EngineCalls engineCalls;

// The linker option --wrap=NAME turns every call of NAME into one of __wrap_NAME, and makes NAME itself
// available as __real_NAME. A member function takes its object as the first argument.

void wrappedSetLink(SBusProtocolBase* protocol, CLink* link) //
    asm("__wrap__ZN16SBusProtocolBase7setLinkEP5CLink");
void realSetLink(SBusProtocolBase* protocol, CLink* link) //
    asm("__real__ZN16SBusProtocolBase7setLinkEP5CLink");

void wrappedAttachProtocol(SBusRtu* rtu, SBusProtocolBase* protocol, SBusDelayedQueue* queue) //
    asm("__wrap__ZN7SBusRtu14attachProtocolEP16SBusProtocolBaseP16SBusDelayedQueue");
void realAttachProtocol(SBusRtu* rtu, SBusProtocolBase* protocol, SBusDelayedQueue* queue) //
    asm("__real__ZN7SBusRtu14attachProtocolEP16SBusProtocolBaseP16SBusDelayedQueue");

void wrappedDestroyQueue(SBusDelayedQueue* queue) asm("__wrap__ZN16SBusDelayedQueueD1Ev");
void realDestroyQueue(SBusDelayedQueue* queue) asm("__real__ZN16SBusDelayedQueueD1Ev");

void wrappedSetLink(SBusProtocolBase* protocol, CLink* link) {
    if (engineCalls.setLink)
        engineCalls.setLink(link);
    realSetLink(protocol, link);
}

void wrappedAttachProtocol(SBusRtu* rtu, SBusProtocolBase* protocol, SBusDelayedQueue* queue) {
    if (engineCalls.attachProtocol)
        engineCalls.attachProtocol(*rtu, protocol, queue);
    realAttachProtocol(rtu, protocol, queue);
}

void wrappedDestroyQueue(SBusDelayedQueue* queue) {
    if (engineCalls.destroyQueue)
        engineCalls.destroyQueue(queue);
    realDestroyQueue(queue);
}
