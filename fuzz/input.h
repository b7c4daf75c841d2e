// What every target needs: numbers out of the fuzzer's bytes, blocks that end where their elements do, and checks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>

namespace fuzz {

using byte_view = std::span<const uint8_t>;

// Stops the fuzzer with a message when an expectation does not hold.
inline void expect(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "found otherwise: %s\n", what);
    std::abort();
}

// A heap block without spare room, so that the address sanitizer sees every access beside it. It starts with its bytes
// set, and can tell whether any of them was changed.
template <typename T>
class exact {
  public:
    explicit exact(size_t count) : count_(count), first_(static_cast<T *>(::operator new(count * sizeof(T))))
    {
        std::memset(static_cast<void *>(first_), untouched_byte, count * sizeof(T));
    }
    exact(const exact &) = delete;
    exact &operator=(const exact &) = delete;
    ~exact() { ::operator delete(first_); }

    T *data() const { return first_; }
    size_t size() const { return count_; }
    T &operator[](size_t i) const { return first_[i]; }
    std::span<T> elements() const { return {first_, count_}; }

    bool untouched() const
    {
        for (const uint8_t byte : byte_view(reinterpret_cast<const uint8_t *>(first_), count_ * sizeof(T))) {
            if (byte != untouched_byte)
                return false;
        }
        return true;
    }

  private:
    static constexpr int untouched_byte = 0xa5;
    size_t count_;
    T *first_;
};

// The fuzzer's bytes from front to back; zeros follow the last one.
class input {
  public:
    input(const uint8_t *bytes, size_t size) : rest_(bytes, size) {}

    template <typename T>
    T take()
    {
        static_assert(std::is_trivially_copyable_v<T>);
        T value = {};
        const byte_view bytes = take_bytes(sizeof value);
        if (!bytes.empty())
            std::memcpy(static_cast<void *>(&value), bytes.data(), bytes.size());
        return value;
    }

    // At most this many, fewer at the end.
    byte_view take_bytes(size_t count)
    {
        const byte_view bytes = rest_.first(count < rest_.size() ? count : rest_.size());
        rest_ = rest_.subspan(bytes.size());
        return bytes;
    }

    // At most the limit, small ones more often.
    uint16_t size(uint16_t limit)
    {
        const auto chosen = take<uint16_t>();
        const uint32_t range = chosen % 8 == 0 ? limit : limit / 8;
        return static_cast<uint16_t>(chosen / 8 % (range + 1));
    }

    bool flag() { return (take<uint8_t>() & 1) != 0; }

    byte_view rest() const { return rest_; }

  private:
    byte_view rest_;
};

// Sets the elements' bytes from a pool, as often repeated as it takes; without a pool they stay.
template <typename T>
void fill(std::span<T> elements, byte_view pool)
{
    auto *to = reinterpret_cast<uint8_t *>(elements.data());
    for (size_t i = 0; !pool.empty() && i < elements.size_bytes(); ++i)
        to[i] = pool[i % pool.size()];
}

} // namespace fuzz
