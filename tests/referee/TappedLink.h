#pragma once

#include "Capture.h"

#include <HalvexDriverLink/CLink.h>

#include <memory>

// A datagram link through another one, with every datagram that goes and comes noted in a capture. Owns the
// other link; the capture outlives it. Threads: as CLink; the capture is used by whoever sends and receives.
class TappedLink final : public CLink {
public:
    TappedLink(std::unique_ptr<CLink> tappedLink, Capture& notedIn);

    void reset() override;
    int open() override { return link->open(); }
    void close() override { link->close(); }
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return link->kind(); }

private:
    void wake() override { link->interrupt(); }

    const std::unique_ptr<CLink> link;
    Capture& capture;
};
