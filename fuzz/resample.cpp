// Bicubic, area-averaging, linear, bilinear and nearest-neighbour resampling with arbitrary sizes. The first byte
// chooses the routine. Buffers have the sizes that the headers ask for; a refused call must leave what it would write.
#include <iterator>
#include <memory>
#include <vector>

#include "fuzz/input.h"
#include "qz_isp/bicubic.h"
#include "qz_isp/nearest.h"
#include "qz_isp/table_resize.h"
#include "tests/allocation_faults.h"

namespace {

using fuzz::exact;
using fuzz::expect;
using fuzz::input;

constexpr uint16_t most = 300; // samples along a side
constexpr uint32_t refused = 32;

// Numbers that routines refuse, and others up to a limit.
int32_t signed_size(input &in, int32_t refused_above)
{
    const auto chosen = in.take<int32_t>();
    return chosen < 2 || chosen > refused_above ? chosen : chosen % (most + 1);
}

// Elements that a routine may touch: none where it has to refuse the size.
size_t elements(int32_t width, int32_t height, int32_t refused_above = INT32_MAX)
{
    const auto usable = [=](int32_t side) { return side > 0 && side <= refused_above; };
    return usable(width) && usable(height) ? static_cast<size_t>(width) * static_cast<size_t>(height) : 0;
}

template <typename T>
void expect_refusal(uint32_t status, uint32_t expected, const exact<T> &written)
{
    expect(status == 0 || status == expected, "the status is one that the header names");
    expect(status == 0 || written.untouched(), "a refused call writes nothing");
}

// Planes of one size and the array of their addresses.
template <typename T, typename Pointer>
class planes {
  public:
    planes(size_t count, size_t samples) : addresses_(count)
    {
        for (size_t i = 0; i < count; ++i) {
            blocks_.push_back(std::make_unique<exact<T>>(samples));
            addresses_[i] = blocks_.back()->data();
        }
    }

    void fill(fuzz::byte_view pool) const
    {
        for (const auto &block : blocks_)
            fuzz::fill(block->elements(), pool);
    }
    Pointer *addresses() const { return addresses_.data(); }
    void expect_refusals(uint32_t status, uint32_t expected) const
    {
        for (const auto &block : blocks_)
            expect_refusal(status, expected, *block);
    }

  private:
    exact<Pointer> addresses_;
    std::vector<std::unique_ptr<exact<T>>> blocks_;
};

struct sides {
    uint16_t width, height;

    explicit sides(input &in) : width(in.size(most)), height(in.size(most)) {}
    size_t area() const { return size_t{width} * height; }
};

void border_sample(input &in)
{
    const sides plane(in);
    const auto mode = in.take<uint32_t>();
    const uint32_t stride = plane.width + 3u;
    const exact<float> buffer(size_t{stride} * 5);
    fuzz::fill(buffer.elements(), in.rest());
    // The sample has two others behind it wherever the mode looks.
    const size_t row = mode % 8 == 0 || mode % 8 == 4 || mode % 8 == 5 ? 0 : 4;
    const size_t column = mode % 8 == 2 || mode % 8 == 4 || mode % 8 == 6 ? 0 : stride - 1;
    interpolate_gain_value(buffer.data() + row * stride + column, stride | uint32_t{0x10000} * plane.height,
                           mode < 64 ? mode % 8 : mode);
}

void extended_buffer(input &in)
{
    const sides plane(in);
    const exact<uint16_t> src(plane.area());
    fuzz::fill(src.elements(), in.rest());
    const exact<float> buffer((plane.width + size_t{3}) * (plane.height + size_t{3}));
    create_extrapolated_buffer_for_bicubic_u16(src.data(), buffer.data(), plane.width, plane.height);
}

template <typename Sample, auto upscale>
void bicubic_upscale(input &in)
{
    const sides from(in);
    const sides to(in);
    const uint16_t count = in.size(3);
    const planes<Sample, const Sample *> src(count, from.area());
    src.fill(in.rest());
    const planes<float, float *> dst(count, to.area());
    const uint32_t status =
        upscale(src.addresses(), dst.addresses(), from.width, from.height, to.width, to.height, count);
    dst.expect_refusals(status, status == 4 ? 4 : refused);
    for (size_t i = 0; status == 0 && i < count * to.area(); ++i) {
        const float value = dst.addresses()[i / to.area()][i % to.area()];
        expect(value >= -255.0f && value <= 65535.0f, "upscaled samples are clamped");
    }
}

void bicubic_resize(input &in)
{
    const sides from(in);
    const sides to(in);
    const exact<float> src(from.area());
    fuzz::fill(src.elements(), in.rest());
    const exact<uint16_t> dst(to.area());
    const uint32_t status =
        bicubic_resize_32f_to_u16p10(src.data(), from.height, from.width, dst.data(), to.height, to.width);
    expect_refusal(status, status == 4 ? 4 : refused, dst);
}

void area_average(input &in)
{
    const sides from(in);
    const sides to(in);
    const uint16_t count = in.size(3);
    const bool whole = in.flag();
    const auto roi = in.take<isp_roi>();
    const planes<float, const float *> src(count, from.area());
    src.fill(in.rest());
    const planes<uint16_t, uint16_t *> dst(count, to.area());
    dst.expect_refusals(image_downscale_32f_to_u16p10(src.addresses(), dst.addresses(), from.width, from.height,
                                                      to.width, to.height, count, whole ? nullptr : &roi),
                        refused);
}

void curve_to_table(input &in)
{
    constexpr int32_t most_points = 1 << 21;
    const int32_t src_count = signed_size(in, most_points);
    const int32_t dst_count = signed_size(in, INT32_MAX);
    const auto scale = in.take<uint32_t>();
    const exact<float> src(elements(src_count, 1, most_points));
    fuzz::fill(src.elements(), in.rest());
    const exact<uint16_t> dst(elements(dst_count, 1));
    expect_refusal(isp_resize_1d_array_uint16(src.data(), src_count, scale, dst.data(), dst_count), refused, dst);
}

void mixed_table(input &in)
{
    constexpr int32_t most_points = 1 << 21;
    const int32_t src_count = signed_size(in, most_points);
    const int32_t dst_count = signed_size(in, INT32_MAX);
    const auto mix = in.take<int32_t>();
    const auto gain = in.take<uint32_t>();
    const bool both = in.flag();
    const exact<uint16_t> src_a(elements(src_count, 1, most_points));
    const exact<uint16_t> src_b(src_a.size());
    fuzz::fill(src_a.elements(), in.rest());
    fuzz::fill(src_b.elements(), in.rest());
    const exact<float> dst(elements(dst_count, 1));
    expect_refusal(resize_and_mix_1d_array_uint16(src_a.data(), src_count, both ? src_b.data() : nullptr, mix, gain,
                                                  dst.data(), dst_count),
                   refused, dst);
}

template <typename T, auto resize, int32_t most_side>
void bilinear(input &in)
{
    const int32_t from[] = {signed_size(in, most_side), signed_size(in, most_side)};
    const int32_t to[] = {signed_size(in, INT32_MAX), signed_size(in, INT32_MAX)};
    const exact<T> src(elements(from[0], from[1], most_side));
    fuzz::fill(src.elements(), in.rest());
    const exact<T> dst(elements(to[0], to[1]));
    expect_refusal(resize(src.data(), from[0], from[1], dst.data(), to[0], to[1]), refused, dst);
}

void bilinear_floats(input &in)
{
    const sides from(in);
    const sides to(in);
    const int32_t refused_heights[] = {from.height, -static_cast<int32_t>(from.height)};
    const int32_t src_height = refused_heights[in.size(10) == 1];
    const exact<float> src(from.area());
    fuzz::fill(src.elements(), in.rest());
    const exact<float> dst(to.area());
    expect_refusal(resize_2d_array_float(src.data(), from.width, src_height, dst.data(), to.width, to.height), refused,
                   dst);
}

void nearest_u32(input &in)
{
    const int32_t from[] = {signed_size(in, INT32_MAX), signed_size(in, INT32_MAX)};
    const int32_t to[] = {signed_size(in, INT32_MAX), signed_size(in, INT32_MAX)};
    const uint16_t missing = in.size(20);
    const exact<uint32_t> src(elements(from[0], from[1]));
    fuzz::fill(src.elements(), in.rest());
    const exact<uint32_t> dst(elements(to[0], to[1]));
    expect_refusal(image_nearest_neighbor_scale_uint32(missing == 1 ? nullptr : src.data(), from[0], from[1],
                                                       missing == 2 ? nullptr : dst.data(), to[0], to[1]),
                   refused, dst);
}

void nearest_u16(input &in)
{
    const sides from(in);
    const sides to(in);
    const exact<uint16_t> src(from.area());
    fuzz::fill(src.elements(), in.rest());
    const exact<uint16_t> dst(to.area());
    expect_refusal(
        image_upscale_nearest_neighbor_uint16(src.data(), dst.data(), from.width, from.height, to.width, to.height),
        refused, dst);
}

void nearest_i32(input &in)
{
    const sides from(in);
    const sides to(in);
    const auto use_maximum = in.take<uint8_t>();
    const exact<int32_t> src(from.area());
    fuzz::fill(src.elements(), in.rest());
    const exact<int32_t> dst(to.area());
    expect_refusal(image_downscale_nearest_neighbor_int32(src.data(), dst.data(), from.width, from.height, to.width,
                                                          to.height, use_maximum),
                   refused, dst);
}

constexpr void (*routines[])(input &) = {
    border_sample,
    extended_buffer,
    bicubic_upscale<uint8_t, image_bicubic_upscale_uint8_to_float>,
    bicubic_upscale<uint16_t, image_bicubic_upscale_uint16_to_float>,
    bicubic_resize,
    area_average,
    curve_to_table,
    mixed_table,
    bilinear<uint8_t, resize_2d_array_uint8, 1 << 23>,
    bilinear<uint16_t, resize_2d_array_uint16, 1 << 23>,
    bilinear<uint32_t, resize_2d_array_uint32, 1 << 19>,
    bilinear_floats,
    nearest_u32,
    nearest_u16,
    nearest_i32,
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    input in(bytes, size);
    const auto routine = in.take<uint8_t>();
    const auto failing = in.take<uint8_t>(); // 1 and 2: the first or second allocation
    const long before = faults::live_blocks();
    faults::fail_allocation(failing == 1 || failing == 2 ? failing - 1 : faults::never);
    routines[routine % std::size(routines)](in);
    faults::fail_allocation(faults::never);
    expect(faults::live_blocks() == before, "routines free what they allocate");
    return 0;
}
