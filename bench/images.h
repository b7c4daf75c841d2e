// The image sizes that resizing routines are timed at, and images of random values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace bench {

struct sizes {
    int src_width, src_height, dst_width, dst_height;

    bool doubling() const { return dst_width == 2 * src_width && dst_height == 2 * src_height; }

    std::string name() const
    {
        return std::to_string(src_width) + 'x' + std::to_string(src_height) + "->" + std::to_string(dst_width) + 'x' +
               std::to_string(dst_height);
    }
};

inline constexpr std::array two_dimensional = {
    sizes{32, 24, 64, 48},
    sizes{320, 240, 640, 480},
    sizes{640, 480, 1920, 1080},
    sizes{1920, 1080, 640, 480},
};

// One source for all contenders, a destination for each.
template <typename T>
struct images {
    explicit images(const sizes &s)
        : source(static_cast<size_t>(s.src_width * s.src_height)),
          ours(static_cast<size_t>(s.dst_width * s.dst_height)), theirs(ours.size())
    {
        std::mt19937 random(1);
        for (T &value : source)
            value = static_cast<T>(random() & 0xffff);
    }

    std::vector<T> source, ours, theirs;
};

} // namespace bench
