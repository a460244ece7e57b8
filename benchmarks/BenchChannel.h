#pragma once

#include "SBusRtu.h"

#include <HalvexDriverComponent/CChannel.h>

// A channel whose engine is turned by the benchmark instead of a thread: no rest of 10 ms between its turns.
class BenchChannel final : public CChannel {
public:
    static constexpr int station = 1;

    explicit BenchChannel(HalvexDriverCoreInterface* host = nullptr);

    bool InitChannel() override { return true; }
    void CloseChannel() override {}
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override;

    // Its one RTU.
    SBusRtu& rtu() { return *ownRtu; }
    // `count` integer registers from R0 on, numbered from 1.
    void addRegisters(unsigned count);
    // `count` flags from F0 on, numbered from 1.
    void addFlags(unsigned count);

protected:
    void run() override {}

private:
    SBusRtu* const ownRtu;
};
