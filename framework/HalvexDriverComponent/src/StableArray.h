#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

// Objects that stay where they are until all are removed, in pieces of memory of growing size: an allocation
// for each would cost 8 or 16 bytes more.
template <typename Object>
class StableArray {
public:
    // One more, as its default constructor makes it.
    Object& add() {
        if (usedOfLast == sizeOfLast)
            addPiece();
        ++count;
        return pieces.back()[usedOfLast++];
    }

    std::size_t size() const { return count; }

    void clear() { *this = StableArray(); }

    // Calls `function` for each, in the order in which they were added.
    template <typename Function>
    void forEach(Function function) {
        std::size_t left = count;
        for (const Piece& piece : pieces) {
            // All but the last are full, and grow in a way that depends on nothing but what was before them.
            const std::size_t used = std::min(left, sizeAfter(count - left));
            std::for_each_n(piece.get(), used, function);
            left -= used;
        }
    }

private:
    using Piece = std::unique_ptr<Object[]>;

    // A ninth of the memory is unused at the most, beyond the first few.
    static std::size_t sizeAfter(std::size_t earlier) { return std::max<std::size_t>(8, earlier / 8); }

    void addPiece() {
        const std::size_t size = sizeAfter(count);
        pieces.push_back(std::make_unique<Object[]>(size));
        sizeOfLast = size;
        usedOfLast = 0;
    }

    std::vector<Piece> pieces;
    std::size_t count = 0;
    std::size_t usedOfLast = 0;
    std::size_t sizeOfLast = 0;
};
