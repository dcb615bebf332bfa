// A queue in one ring of memory.
#pragma once

#include "plat/Assert.h"

#include <memory>
#include <utility>

namespace plat {

/// A queue that grows by doubling and keeps its capacity: a power of two, at least 8, at most 0x3fffffff elements.
template <class T>
class CircularVector {
public:
    int size() const { return count; }
    bool isEmpty() const { return count == 0; }
    int getCapacity() const { return capacity; }
    void clear() { first = count = 0; }

    T& operator[](int i) {
        ASSERT(i >= 0 && i < count);
        return slots[static_cast<size_t>(index(i))];
    }

    void pushBack(const T& value) {
        if (count == capacity)
            grow();
        slots[static_cast<size_t>(index(count))] = value;
        ++count;
    }

    T popFront() {
        ASSERT(count > 0);
        T value = std::move((*this)[0]);
        first = index(1);
        --count;
        return value;
    }

    /// Takes out the element at `i`, moving those behind it forward.
    void erase(int i) {
        ASSERT(i >= 0 && i < count);
        for (; i + 1 < count; ++i)
            (*this)[i] = std::move((*this)[i + 1]);
        --count;
    }

private:
    static constexpr int minCapacity = 8;
    static constexpr int maxCapacity = 0x3fffffff;

    int index(int i) const { return (first + i) & (capacity - 1); }

    void grow() {
        ASSERT(capacity <= maxCapacity / 2);
        const int larger = capacity ? capacity * 2 : minCapacity;
        auto fresh = std::make_unique<T[]>(static_cast<size_t>(larger));
        for (int i = 0; i < count; ++i)
            fresh[static_cast<size_t>(i)] = std::move((*this)[i]);
        slots = std::move(fresh);
        capacity = larger;
        first = 0;
    }

    std::unique_ptr<T[]> slots;
    int capacity = 0;
    int first = 0;
    int count = 0;
};

} // namespace plat
