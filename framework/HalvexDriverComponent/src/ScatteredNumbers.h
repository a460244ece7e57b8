#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Finds objects that are kept elsewhere by numbers of any distribution, in one table of 16 to 20 bytes for
// each. A number has its place by a hash, or the next free one behind that.
template <typename Object>
class ScatteredNumbers {
public:
    // Once for each number.
    void enter(unsigned number, Object* object) {
        if ((count + 1) * 4 > objects.size() * 3) // with more of them full, searches grow long
            grow();
        put(number, object);
        ++count;
    }

    // Null for a number that was not entered.
    Object* find(unsigned number) const { return objects.empty() ? nullptr : objects[placeOf(number)]; }

    // Calls `function` with each number and its object.
    template <typename Function>
    void forEach(Function function) const {
        for (std::size_t place = 0; place < objects.size(); ++place)
            if (objects[place] != nullptr)
                function(numbers[place], *objects[place]);
    }

private:
    // Where the number is, or else is to be put.
    std::size_t placeOf(unsigned number) const {
        // By the golden ratio, which spreads numbers in a row evenly.
        const std::uint32_t hash = std::uint32_t{number} * 2'654'435'769U;
        std::size_t place = static_cast<std::size_t>(std::uint64_t{hash} * objects.size() >> 32U);
        while (objects[place] != nullptr && numbers[place] != number)
            place = place + 1 < objects.size() ? place + 1 : 0;
        return place;
    }

    void put(unsigned number, Object* object) {
        const std::size_t place = placeOf(number);
        numbers[place] = number;
        objects[place] = object;
    }

    void grow() {
        ScatteredNumbers larger;
        const std::size_t size = objects.size() + objects.size() / 4 + 16;
        larger.numbers.resize(size);
        larger.objects.resize(size);
        forEach([&](unsigned number, Object& object) { larger.put(number, &object); });
        numbers.swap(larger.numbers);
        objects.swap(larger.objects);
    }

    // A place without an object is free.
    std::vector<unsigned> numbers;
    std::vector<Object*> objects;
    std::size_t count = 0;
};
