#include "Bench.h"

using namespace sim;

Bytes hex(const std::string& text) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 3)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::string toHex(const Bytes& bytes) {
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty())
            text += ' ';
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

namespace {

std::string joined(const std::vector<Answer>& answers) {
    Bytes all;
    for (const Answer& answer : answers)
        all.insert(all.end(), answer.bytes.begin(), answer.bytes.end());
    return toHex(all);
}

} // namespace

Bench::Bench(Framing framing, const std::vector<int>& stations, std::uint64_t seed, std::size_t records)
    : line(1, framing, stations, MemorySizes(), seed, records), receiver(framing) {}

std::string Bench::ask(const std::string& request) {
    return joined(askEach(request));
}

std::vector<Answer> Bench::askEach(const std::string& request) {
    const Bytes bytes = hex(request);
    if (line.framing() == Framing::Ethernet)
        return line.respond(bytes, now);
    return respond(receiver.push(bytes.data(), bytes.size(), now));
}

std::string Bench::pass(std::chrono::milliseconds time) {
    now += time;
    return joined(respond(receiver.expire(now)));
}

std::vector<Answer> Bench::respond(const std::vector<Bytes>& telegrams) {
    line.countLosses(receiver.takeLosses());
    std::vector<Answer> answers;
    for (const Bytes& telegram : telegrams) {
        for (Answer& answer : line.respond(telegram, now))
            answers.push_back(std::move(answer));
    }
    return answers;
}
