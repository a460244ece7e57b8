#include "EngineTest.h"

#include <cstdlib>
#include <new>

// What the engine does when there is no memory left. A program of its own: each allocation goes through here.

namespace {

thread_local bool isExhausted = false;

using ExhaustedMemoryTest = EngineTest;

} // namespace

void* operator new(std::size_t size) {
    void* const memory = isExhausted ? nullptr : std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

TEST_F(ExhaustedMemoryTest, ACommandThatFindsNoneLeavesTheTableAsItWas) {
    protocol->submitRequest(request("output"));
    protocol->queueRequest(request("poll"));
    const SBusRequest newer = request("output");
    isExhausted = true;
    EXPECT_THROW(protocol->submitRequest(newer), std::bad_alloc);
    isExhausted = false;
    EXPECT_EQ(pendingInOrder(), (QStringList{"output", "poll"}));
}
