#include "Memory.h"

#include "FloatWord.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace sim {

Memory::Memory(const MemorySizes& memorySizes) : sizes(memorySizes) {
    for (std::size_t i = 0; i < mediaCount; ++i) {
        elements[i].values.resize(sizes.elements[i], 0);
        elements[i].wasSet.resize(sizes.elements[i], false);
    }
}

bool Memory::covers(Media media, unsigned first, unsigned count) const {
    const unsigned size = sizes.of(media);
    return first <= size && count <= size - first;
}

void Memory::require(Media media, unsigned first, unsigned count) const {
    if (!covers(media, first, count))
        throw std::out_of_range(std::string("no element ") + letterOf(media) + std::to_string(first) +
                                " to " + std::to_string(first + count - 1));
}

std::uint32_t Memory::get(Media media, unsigned address) const {
    return get(media, address, 1).front();
}

std::vector<std::uint32_t> Memory::get(Media media, unsigned first, unsigned count) const {
    require(media, first, count);
    const std::lock_guard lock(mutex);
    const auto begin = elementsOf(media).values.begin() + first;
    return {begin, begin + count};
}

void Memory::set(Media media, unsigned address, std::uint32_t value) {
    set(media, address, std::vector<std::uint32_t>{value});
}

void Memory::set(Media media, unsigned first, const std::vector<std::uint32_t>& values) {
    require(media, first, static_cast<unsigned>(values.size()));
    const std::lock_guard lock(mutex);
    Elements& target = elementsOf(media);
    for (std::size_t i = 0; i < values.size(); ++i) {
        target.values[first + i] = isBits(media) ? values[i] & 1U : values[i];
        target.wasSet[first + i] = true;
    }
}

double Memory::getFloat(Media media, unsigned address) const {
    return decodeFloatWord(get(media, address));
}

void Memory::setFloat(Media media, unsigned address, double value) {
    set(media, address, encodeFloatWord(value));
}

void Memory::move(Media media, unsigned first, const std::vector<std::uint32_t>& values) {
    const std::lock_guard lock(mutex);
    Elements& target = elementsOf(media);
    const std::size_t end = std::min<std::size_t>(target.values.size(), first + values.size());
    for (std::size_t address = first; address < end; ++address) {
        if (!target.wasSet[address])
            target.values[address] = values[address - first];
    }
}

} // namespace sim
