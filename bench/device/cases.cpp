// qz-isp-device-cases CASE CALLS: makes a case's inputs and calls the routine so many times, for count.sh; without
// arguments lists the cases.
#include "bench/cases.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/images.h"
#include "qz_isp/bicubic.h"
#include "qz_isp/checksum.h"
#include "qz_isp/nearest.h"
#include "qz_isp/table_resize.h"

namespace {

using bench::images;

template <typename Work>
void repeat(int calls, Work work)
{
    for (int i = 0; i < calls; ++i)
        work();
}

void bare_frame(int calls)
{
    bench::camera one;
    repeat(calls, [&] { one.run(); });
}

void full_frame(int calls)
{
    bench::camera one;
    one.switch_everything_on();
    repeat(calls, [&] { one.run(); });
}

template <uint32_t Width, uint32_t Height>
void statistics(int calls)
{
    bench::statistics_case grid(Width, Height);
    repeat(calls, [&] { grid.convert(); });
}

std::vector<float> gains(uint16_t width, uint16_t height)
{
    std::vector<float> values;
    for (uint32_t i = 0; i < uint32_t{width} * height; ++i)
        values.push_back(0.5f + static_cast<float>(i * 40503u % 65536u) * (3.5f / 65536.0f));
    return values;
}

template <uint16_t FromWidth, uint16_t FromHeight, uint16_t ToWidth, uint16_t ToHeight>
void bicubic(int calls)
{
    const std::vector<float> from = gains(FromWidth, FromHeight);
    std::vector<uint16_t> to(size_t{ToWidth} * ToHeight);
    repeat(calls,
           [&] { bicubic_resize_32f_to_u16p10(from.data(), FromHeight, FromWidth, to.data(), ToHeight, ToWidth); });
}

template <uint16_t FromWidth, uint16_t FromHeight, uint16_t ToWidth, uint16_t ToHeight>
void area(int calls)
{
    const std::vector<float> from = gains(FromWidth, FromHeight);
    std::vector<uint16_t> to(size_t{ToWidth} * ToHeight);
    const float *in = from.data();
    uint16_t *out = to.data();
    repeat(calls,
           [&] { image_downscale_32f_to_u16p10(&in, &out, FromWidth, FromHeight, ToWidth, ToHeight, 1, nullptr); });
}

template <typename T, auto Resize>
void linear(int calls)
{
    images<T> all({32, 24, 64, 48});
    repeat(calls, [&] { Resize(all.source.data(), 32, 24, all.ours.data(), 64, 48); });
}

void nearest(int calls)
{
    images<uint32_t> all({32, 24, 64, 48});
    repeat(calls, [&] { image_nearest_neighbor_scale_uint32(all.source.data(), 32, 24, all.ours.data(), 64, 48); });
}

void maximum(int calls)
{
    images<int32_t> all({128, 96, 27, 21});
    repeat(calls,
           [&] { image_downscale_nearest_neighbor_int32(all.source.data(), all.ours.data(), 128, 96, 27, 21, 1); });
}

volatile uint64_t kept; // results go here, so that no call is dropped

void checksum(int calls)
{
    const std::vector<uint8_t> bytes(4096, 167);
    repeat(calls, [&] { kept = get_checksum(bytes.data(), 4096); });
}

constexpr struct {
    const char *name;
    void (*run)(int calls);
} cases[] = {
    {"frame, bare", bare_frame},
    {"frame, everything on", full_frame},
    {"statistics 80x60", statistics<80, 60>},
    {"bicubic 17x13->27x21", bicubic<17, 13, 27, 21>},
    {"area 128x96->27x21", area<128, 96, 27, 21>},
    {"area 64x48->32x24", area<64, 48, 32, 24>},
    {"linear u8 32x24->64x48", linear<uint8_t, resize_2d_array_uint8>},
    {"linear u16 32x24->64x48", linear<uint16_t, resize_2d_array_uint16>},
    {"linear float 32x24->64x48", linear<float, resize_2d_array_float>},
    {"nearest u32 32x24->64x48", nearest},
    {"maximum 128x96->27x21", maximum},
    {"checksum 4 KiB", checksum},
};

} // namespace

int main(int argc, char **argv)
{
    for (const auto &one : cases) {
        if (argc < 3)
            std::puts(one.name);
        else if (std::strcmp(one.name, argv[1]) == 0)
            one.run(std::atoi(argv[2]));
    }
    return 0;
}
