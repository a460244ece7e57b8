#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace host {

// Finds the first of equal things among a million, by their numbers. The things themselves stand with its
// user; here each takes eight bytes and at most as many that are free.
class HashIndex {
public:
    // Makes room for as many.
    void reserve(std::size_t expected) {
        while (slots.size() < 2 * expected)
            grow();
    }

    // The one that is there already and equals the new one; otherwise nothing, and `number` is taken in.
    // `equals` is asked of numbers whose things have the same hash.
    template <typename Equals>
    std::optional<std::uint32_t> findOrTake(std::size_t hash, std::uint32_t number, Equals equals) {
        reserve(++count);
        const auto wanted = static_cast<std::uint32_t>(hash ^ (hash >> 32U));
        std::size_t place = placeOf(wanted);
        for (; slots[place].number != none; place = next(place))
            if (slots[place].hash == wanted && equals(slots[place].number)) {
                --count;
                return slots[place].number;
            }
        slots[place] = {wanted, number};
        return std::nullopt;
    }

private:
    static constexpr std::uint32_t none = 0xFFFF'FFFF;

    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = none;
    };

    // Sixteen numbers that follow each other stay together, as ids of points do; whatever steps numbers come
    // in, a multiplication spreads the sixteens.
    std::size_t placeOf(std::uint32_t hash) const {
        const std::uint32_t sixteens = (hash >> 4U) * 0x9E37'79B9U;
        return ((sixteens ^ (sixteens >> 16U)) << 4U | (hash & 15U)) & (slots.size() - 1);
    }
    std::size_t next(std::size_t place) const { return (place + 1) & (slots.size() - 1); }

    void grow() {
        constexpr std::size_t firstSize = 16;
        std::vector<Slot> before(slots.empty() ? firstSize : 2 * slots.size());
        before.swap(slots);
        for (const Slot& slot : before) {
            if (slot.number == none)
                continue;
            std::size_t place = placeOf(slot.hash);
            while (slots[place].number != none)
                place = next(place);
            slots[place] = slot;
        }
    }

    std::vector<Slot> slots; // a power of two
    std::size_t count = 0;
};

} // namespace host
