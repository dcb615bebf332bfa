// A pointer with a count of its holders.
#pragma once

#include "plat/Assert.h"

#include <cstddef>
#include <utility>

namespace plat {

/// Frees with delete.
template <class T>
struct DefaultDeleter {
    void operator()(T* object) const { delete object; }
};

/// Shares one object; the last holder calls D. Not for more than one thread: the count isn't atomic.
template <class T, class D = DefaultDeleter<T>>
class SharedPtr {
public:
    SharedPtr() = default;
    SharedPtr(std::nullptr_t) {} // NOLINT: null converts as for a plain pointer
    explicit SharedPtr(T* object) { adopt(object); }
    SharedPtr(const SharedPtr& other) noexcept : ptr(other.ptr), count(other.count) {
        if (count)
            ++*count;
    }
    SharedPtr(SharedPtr&& other) noexcept
        : ptr(std::exchange(other.ptr, nullptr)), count(std::exchange(other.count, nullptr)) {}
    ~SharedPtr() { reset(); }
    SharedPtr& operator=(SharedPtr other) noexcept {
        std::swap(ptr, other.ptr);
        std::swap(count, other.count);
        return *this;
    }

    /// Lets go, then holds `object`, if any, as its first holder.
    void reset(T* object = nullptr) {
        T* oldPtr = std::exchange(ptr, nullptr);
        int* oldCount = std::exchange(count, nullptr);
        adopt(object);
        if (oldCount && --*oldCount == 0) {
            delete oldCount;
            D()(oldPtr); // last: it may come back here
        }
    }

    T* get() const { return ptr; }
    T* operator->() const {
        ASSERT(ptr);
        return ptr;
    }
    T& operator*() const {
        ASSERT(ptr);
        return *ptr;
    }
    explicit operator bool() const { return ptr != nullptr; }
    bool operator==(const SharedPtr& other) const { return ptr == other.ptr; }
    int useCount() const { return count ? *count : 0; }

private:
    void adopt(T* object) {
        if (object)
            count = new int(1);
        ptr = object;
    }

    T* ptr = nullptr;
    int* count = nullptr;
};

} // namespace plat
