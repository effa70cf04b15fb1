// A growable array of trivially copyable values in its own memory mapping. Growing moves the
// mapping with mremap instead of copying it into fresh pages, and the mapping is advised to use
// huge pages: an index of a million entries then costs a few page faults instead of tens of
// thousands, and no copies. Throws std::bad_alloc when memory runs out, as std::vector does.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

namespace qmz {

// The untyped part: one mapping of `capacity` bytes.
class MappedBlock {
public:
    MappedBlock() = default;
    ~MappedBlock();
    MappedBlock(const MappedBlock&) = delete;
    MappedBlock& operator=(const MappedBlock&) = delete;

    void* Data() const { return data_; }
    size_t Capacity() const { return capacity_; }
    // Makes room for at least `bytes`, keeping the contents.
    void Reserve(size_t bytes);
    void Release();
    void Swap(MappedBlock& other) noexcept;

private:
    void* data_ = nullptr;
    size_t capacity_ = 0;
};

template <class T> class MappedArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    T* data() { return static_cast<T*>(block_.Data()); }
    const T* data() const { return static_cast<const T*>(block_.Data()); }
    T& operator[](size_t i) { return data()[i]; }
    const T& operator[](size_t i) const { return data()[i]; }
    T& back() { return data()[size_ - 1]; }
    T* begin() { return data(); }
    T* end() { return data() + size_; }
    const T* begin() const { return data(); }
    const T* end() const { return data() + size_; }
    std::span<T> span() { return {data(), size_}; }

    void push_back(const T& value) {
        Grow(size_ + 1);
        std::memcpy(data() + size_, &value, sizeof(T));
        ++size_;
    }
    // New elements are left as the mapping gives them: zero bytes, or old values after clear.
    void resize(size_t n) {
        Grow(n);
        size_ = n;
    }
    void clear() { size_ = 0; }
    void swap(MappedArray& other) noexcept {
        block_.Swap(other.block_);
        std::swap(size_, other.size_);
    }
    void release() {
        block_.Release();
        size_ = 0;
    }

private:
    void Grow(size_t n) {
        if (n * sizeof(T) > block_.Capacity()) {
            block_.Reserve(n * sizeof(T));
        }
    }

    MappedBlock block_;
    size_t size_ = 0;
};

} // namespace qmz
