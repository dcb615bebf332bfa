// A counted buffer that can be wiped.
#pragma once

#include "plat/Assert.h"
#include "plat/SecureString.h"

#include <algorithm>
#include <type_traits>

namespace plat {

/// Owns `size` elements of a plain type; new ones are zero.
///
/// With `secure` set the bytes are zeroed before they are freed, also when the buffer is resized.
template <class T>
class MBuf {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    MBuf() = default;
    explicit MBuf(int size, bool secure = false) : secure_(secure) { resize(size); }
    MBuf(const T* from, int size, bool secure = false) : secure_(secure) { assign(from, size); }
    MBuf(const MBuf& other) : secure_(other.secure_) { assign(other.data_, other.size_); }
    MBuf(MBuf&& other) noexcept { swap(other); }
    ~MBuf() { clear(); }
    MBuf& operator=(MBuf other) noexcept {
        swap(other);
        return *this;
    }

    /// Keeps what fits of the old contents.
    void resize(int size) {
        ASSERT(size >= 0);
        if (size == size_)
            return;
        T* fresh = size ? new T[static_cast<size_t>(size)]() : nullptr;
        if (fresh && data_)
            std::copy_n(data_, std::min(size, size_), fresh);
        clear();
        data_ = fresh;
        size_ = size;
    }

    /// Takes a copy; `from` may lie inside the buffer.
    void assign(const T* from, int size) {
        MBuf fresh(size, secure_);
        if (size > 0)
            std::copy_n(from, size, fresh.data_);
        swap(fresh);
    }

    /// Frees, wiping if secure.
    void clear() {
        if (secure_)
            secureWipe(data_, sizeof(T) * static_cast<size_t>(size_));
        delete[] data_;
        data_ = nullptr;
        size_ = 0;
    }

    void setSecure(bool secure) { secure_ = secure; }
    void swap(MBuf& other) noexcept {
        std::swap(size_, other.size_);
        std::swap(data_, other.data_);
        std::swap(secure_, other.secure_);
    }

    int size() const { return size_; } ///< elements
    bool isEmpty() const { return size_ == 0; }
    bool isSecure() const { return secure_; }
    T* data() { return data_; } ///< null while empty
    const T* data() const { return data_; }
    T& operator[](int i) {
        ASSERT(i >= 0 && i < size_);
        return data_[i];
    }
    const T& operator[](int i) const {
        ASSERT(i >= 0 && i < size_);
        return data_[i];
    }
    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }

private:
    int size_ = 0;
    T* data_ = nullptr;
    bool secure_ = false;
};

} // namespace plat
