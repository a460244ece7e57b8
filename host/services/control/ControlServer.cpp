#include "ControlServer.h"

#include "ControlListener.h"
#include "plan/DescriptorNeed.h"
#include "runtime/StartThread.h"

#include <DescriptorLimit.h>

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t mostClients = 1'500; // a thousand and some that come and go

// What the site leaves.
std::size_t clientsAllowed(const Site& site) {
    const std::size_t limit = descriptors::limit();
    const std::size_t others = descriptorsNeeded(site, {true, true, true}) - leastControlClients;
    return limit > others + leastControlClients ? std::min(mostClients, limit - others) : leastControlClients;
}

} // namespace

ControlServer::ControlServer(ControlledHost& controlledHost, const ValueStore& valueStore)
    : allowedClients(clientsAllowed(controlledHost.site())),
      listener(std::make_unique<ControlListener>(controlledHost, valueStore)) {
    thread.setObjectName(QStringLiteral("control"));
}

ControlServer::~ControlServer() {
    stop();
}

std::string ControlServer::start(const ControlDoor& door) {
    ControlDoor counted = door;
    if (counted.clients == 0)
        counted.clients = allowedClients;
    thread.start();
    // Nobody would ever answer what is asked of the listener below.
    if (!thread.isRunning())
        throw ThreadRefused(threadRefusal("the control socket"));
    listener->moveToThread(&thread);
    std::string fault;
    QMetaObject::invokeMethod(
        listener.get(), [&] { fault = listener->listen(counted); }, Qt::BlockingQueuedConnection);
    if (!fault.empty()) {
        thread.quit();
        thread.wait();
    }
    return fault;
}

void ControlServer::stop() {
    if (!thread.isRunning())
        return;
    QMetaObject::invokeMethod(
        listener.get(), [this] { listener->end(); }, Qt::BlockingQueuedConnection);
    thread.quit();
    thread.wait();
}

} // namespace host
