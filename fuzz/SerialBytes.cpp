#include "FuzzInput.h"
#include "SerialReceiver.h"

// Bytes of a serial line, in pieces of any size. What is cut out of them is a telegram with a right checksum,
// and no byte is lost from the count.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint8_t choices = input.byte();
    sim::SerialReceiver receiver((choices & 1) != 0 ? sim::Framing::DataMode : sim::Framing::BreakMode);
    const std::size_t piece = 1U + (choices >> 1);
    sim::Clock::time_point now{};
    std::size_t taken = 0;
    const auto take = [&taken](const std::vector<sim::Bytes>& telegrams) {
        for (const sim::Bytes& telegram : telegrams) {
            require(sim::hasValidChecksum(telegram.data(), telegram.size()), "a telegram has its checksum");
            taken += telegram.size();
        }
    };
    const std::size_t all = input.restSize();
    for (std::size_t at = 0; at < all; at += piece)
        take(receiver.push(input.rest() + at, std::min(piece, all - at), now));
    now += 2 * sim::SerialReceiver::silenceLimit;
    take(receiver.expire(now));
    if (!receiver.incomplete())
        require(taken + receiver.takeLosses().bytes == all, "each byte is a telegram's or a loss");
    return 0;
}
