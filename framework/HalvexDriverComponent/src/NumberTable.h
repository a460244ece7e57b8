#pragma once

#include "ScatteredNumbers.h"

#include <cstddef>
#include <vector>

// Finds objects that are kept elsewhere by their numbers. The numbers of points mostly run from 1 on without
// large gaps, and then a plain table is all that it takes. Numbers far beyond the count of objects are kept
// apart, so that the table stays as small as what it stands for.
template <typename Object>
class NumberTable {
public:
    // Once for each number. `count`: of the objects that there are, or are going to be.
    void enter(unsigned number, Object* object, std::size_t count) {
        constexpr std::size_t gaps = 64; // tolerated whatever the count, 8 bytes each
        if (number >= 2 * count + gaps) {
            distant.enter(number, object);
            return;
        }
        if (number >= objects.capacity())
            objects.reserve(number + std::size_t{1} + number / 8); // twice as much would be unused for long
        if (number >= objects.size())
            objects.resize(number + std::size_t{1});
        objects[number] = object;
    }

    // Null for a number that was not entered.
    Object* find(unsigned number) const {
        Object* const object = number < objects.size() ? objects[number] : nullptr;
        return object != nullptr ? object : distant.find(number);
    }

    // Calls `function` with each number and its object.
    template <typename Function>
    void forEach(Function function) const {
        unsigned number = 0;
        for (Object* const object : objects) {
            if (object != nullptr)
                function(number, *object);
            ++number;
        }
        distant.forEach(function);
    }

    void clear() {
        objects = {};
        distant = {};
    }

private:
    std::vector<Object*> objects; // by number
    ScatteredNumbers<Object> distant;
};
