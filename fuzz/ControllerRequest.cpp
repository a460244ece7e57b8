#include "FuzzInput.h"
#include "Line.h"

// Whole telegrams to simulated controllers, as they come or with their checksum made right. Nobody but a
// controller of the line answers, and nothing without a right checksum is obeyed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t recordsKept = 16;
    const sim::MemorySizes sizes;
    FuzzInput input(data, size);
    const std::uint8_t choices = input.byte();
    const sim::Framing framings[] = {sim::Framing::DataMode, sim::Framing::BreakMode, sim::Framing::Ethernet};
    static sim::Line lines[] = {{1, framings[0], {1, 2}, sizes, 1, recordsKept},
                                {2, framings[1], {1, 2}, sizes, 1, recordsKept},
                                {3, framings[2], {1, 2}, sizes, 1, recordsKept}};
    sim::Line& line = lines[choices % 3];
    sim::Bytes telegram(input.rest(), input.rest() + input.restSize());
    if ((choices & 0x80) != 0)
        sim::appendChecksum(telegram);
    const bool isWhole = sim::hasValidChecksum(telegram.data(), telegram.size());
    const std::vector<sim::Answer> answers = line.respond(telegram, sim::Clock::now());
    require(isWhole || answers.empty(), "a wrong checksum gets no answer");
    for (const sim::Answer& answer : answers)
        if (line.framing() == sim::Framing::Ethernet)
            require(sim::hasValidChecksum(answer.bytes.data(), answer.bytes.size()),
                    "an answer has its checksum");
    return 0;
}
