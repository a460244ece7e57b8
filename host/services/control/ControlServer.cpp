#include "ControlServer.h"

#include "ControlListener.h"
#include "DescriptorLimit.h"
#include "runtime/StartThread.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t mostClients = 1'500;    // a thousand and some that come and go
constexpr std::size_t otherDescriptors = 500; // lines, log files, the plug-in
constexpr std::size_t wantedDescriptors = 4'096;

std::size_t clientsAllowed() {
    const std::size_t limit = raiseDescriptorLimit(wantedDescriptors);
    const std::size_t left = limit > 2 * otherDescriptors ? limit - otherDescriptors : limit / 2;
    return std::min(mostClients, left);
}

} // namespace

ControlServer::ControlServer(ControlledHost& controlledHost, const ValueStore& valueStore)
    : listener(std::make_unique<ControlListener>(controlledHost, valueStore)) {
    thread.setObjectName(QStringLiteral("control"));
}

ControlServer::~ControlServer() {
    stop();
}

std::string ControlServer::start(const ControlDoor& door) {
    ControlDoor counted = door;
    if (counted.clients == 0)
        counted.clients = clientsAllowed();
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
