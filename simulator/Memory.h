#pragma once

#include "Media.h"

#include <array>
#include <mutex>
#include <vector>

namespace sim {

// Elements of each media, by Media's order. A controller has so many and no more.
struct MemorySizes {
    std::array<unsigned, mediaCount> elements = {65536, 65536, 65536, 65536, 1600, 1600};

    unsigned of(Media media) const { return elements[indexOf(media)]; }
    void set(Media media, unsigned count) { elements[indexOf(media)] = count; }
};

// The elements of one controller, all 0 at first. Bits are 0 or 1.
//
// An element that was set, by a telegram or from outside, keeps its value from then on: move() no longer
// changes it.
// Threads: any operation from any thread; each is one step, so a telegram never sees half of another.
// Elements outside the sizes: std::out_of_range.
class Memory {
public:
    explicit Memory(const MemorySizes& memorySizes = {});

    bool covers(Media media, unsigned first, unsigned count) const;

    std::uint32_t get(Media media, unsigned address) const;
    std::vector<std::uint32_t> get(Media media, unsigned first, unsigned count) const;
    // Of a bit media the lowest bit counts.
    void set(Media media, unsigned address, std::uint32_t value);
    void set(Media media, unsigned first, const std::vector<std::uint32_t>& values);

    // As the controller's floating-point word.
    double getFloat(Media media, unsigned address) const;
    void setFloat(Media media, unsigned address, double value);

    // Stores values, but for elements that were set. What reaches beyond the sizes is left out.
    void move(Media media, unsigned first, const std::vector<std::uint32_t>& values);

private:
    struct Elements {
        std::vector<std::uint32_t> values;
        std::vector<bool> wasSet;
    };

    void require(Media media, unsigned first, unsigned count) const;
    Elements& elementsOf(Media media) { return elements[indexOf(media)]; }
    const Elements& elementsOf(Media media) const { return elements[indexOf(media)]; }

    const MemorySizes sizes;
    mutable std::mutex mutex;
    std::array<Elements, mediaCount> elements;
};

} // namespace sim
