// An array that ends where its memory does: touching the first byte behind it stops the program.
#pragma once

#include <algorithm>
#include <cstddef>

#include <sys/mman.h>
#include <unistd.h>

template <typename T>
class guarded {
  public:
    explicit guarded(size_t count, T value = T()) : count_(count)
    {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t pages = (count * sizeof(T) + page - 1) / page * page;
        mapped_ = pages + page;
        memory_ = static_cast<char *>(mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(memory_, pages, PROT_READ | PROT_WRITE);
        first_ = reinterpret_cast<T *>(memory_ + pages) - count;
        std::fill_n(first_, count, value);
    }
    ~guarded() { munmap(memory_, mapped_); }
    guarded(const guarded &) = delete;
    guarded &operator=(const guarded &) = delete;

    T *data() const { return first_; }
    size_t size() const { return count_; }
    T &operator[](size_t i) const { return first_[i]; }
    T *begin() const { return first_; }
    T *end() const { return first_ + count_; }

  private:
    size_t count_;
    size_t mapped_;
    char *memory_;
    T *first_;
};
