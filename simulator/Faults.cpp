#include "Faults.h"

#include "Units.h"

#include <array>

namespace sim {

namespace {

struct NamedShare {
    std::string_view name;
    double Faults::*share;
};

constexpr std::array<NamedShare, 6> shares = {{{"drop", &Faults::drop},
                                               {"late", &Faults::late},
                                               {"duplicate", &Faults::duplicate},
                                               {"crc", &Faults::crc},
                                               {"nak", &Faults::nak},
                                               {"short", &Faults::shorten}}};

double Faults::*findShare(std::string_view name) {
    for (const NamedShare& named : shares) {
        if (named.name == name)
            return named.share;
    }
    return nullptr;
}

} // namespace

bool parseFaults(const std::string& text, Faults& faults, std::string& error) {
    std::string_view rest = text;
    bool isFollowed = false;
    do {
        isFollowed = rest.find(',') != std::string_view::npos;
        std::string_view part = takeUntil(rest, ',');
        const std::string_view name = takeUntil(part, '=');
        double Faults::*share = findShare(name);
        if (!share) {
            error = "no fault is called '" + std::string(name) +
                    "': choose from drop, late, duplicate, crc, nak, short";
            return false;
        }
        const auto value = parsePercentage(part);
        if (!value) {
            error = std::string(name) + " needs a share from 0% to 100%, as in " + std::string(name) + "=5%";
            return false;
        }
        faults.*share = *value;
    } while (isFollowed);
    return true;
}

MishapGenerator::MishapGenerator(std::uint64_t seed, int lineId) {
    std::seed_seq sequence{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32),
                           static_cast<std::uint32_t>(lineId)};
    generator.seed(sequence);
}

double MishapGenerator::draw() {
    // 53 bits, as many as a double holds; the library's own distributions differ from maker to maker.
    return static_cast<double>(generator() >> 11) * 0x1p-53;
}

Mishap MishapGenerator::next(const Faults& faults) {
    Mishap mishap;
    mishap.drop = draw() < faults.drop;
    mishap.late = draw() < faults.late;
    mishap.duplicate = draw() < faults.duplicate;
    mishap.spoilChecksum = draw() < faults.crc;
    mishap.refuse = draw() < faults.nak;
    mishap.shorten = draw() < faults.shorten;
    mishap.cut = draw();
    return mishap;
}

void shorten(Bytes& answer, double cut) {
    const std::size_t keep =
        answer.size() < 2 ? 0 : 1 + static_cast<std::size_t>(cut * static_cast<double>(answer.size() - 1));
    answer.resize(keep);
}

void spoilChecksum(Bytes& answer) {
    if (!answer.empty())
        answer.back() = static_cast<std::uint8_t>(~answer.back());
}

} // namespace sim
