#pragma once

#include <cstddef>
#include <vector>

// Finds objects that are kept elsewhere by their numbers. The numbers of points mostly run from 1 on without
// large gaps, and then a plain table is all that it takes. A number far beyond the count of objects is not
// entered, so that the table stays as small as what it stands for: who does not find it here looks where the
// objects are kept.
template <typename Object>
class NumberTable {
public:
    // `count`: of the objects that there are.
    void enter(unsigned number, Object* object, std::size_t count) {
        constexpr std::size_t gaps = 64; // tolerated whatever the count, 8 bytes each
        if (number >= 2 * count + gaps)
            return;
        if (number >= objects.size())
            objects.resize(std::size_t{number} + 1);
        objects[number] = object;
    }

    // Null for a number that was not entered.
    Object* find(unsigned number) const { return number < objects.size() ? objects[number] : nullptr; }

    void clear() { objects.clear(); }

private:
    std::vector<Object*> objects; // by number
};
