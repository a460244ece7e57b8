#pragma once

#include "site/Site.h"

#include <HalvexDriverLink/CLink.h>

namespace host {

// A line that leads nowhere: always opens, takes every telegram, answers none. Threads as of any link.
class SilentLink : public CLink {
public:
    explicit SilentLink(LineType type);

    void reset() override;
    int open() override;
    void close() override {}
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return linkKind; }

protected:
    void wake() override {}

private:
    const int linkKind;
};

} // namespace host
