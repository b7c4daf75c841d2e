#include <algorithm>
#include <cmath>
#include <cstddef>

#include "color/constants.h"
#include "color/sector_matrix.h"
#include "qz_isp/color.h"
#include "util/control_share.h"

namespace {

struct rotation {
    float cos;
    float sin;

    explicit rotation(float angle)
        : cos(static_cast<float>(std::cos(static_cast<double>(angle)))),
          sin(static_cast<float>(std::sin(static_cast<double>(angle))))
    {}
};

float clamped(float element)
{
    return std::clamp(element, -3.999f, 3.999f);
}

} // namespace

void create_hue_matrix(int8_t hue, float *out)
{
    constexpr double half_turn = 3.1415998935699463; // 3.1416f
    const rotation turn(static_cast<float>(qz::control_share(hue) * half_turn));
    out[0] = turn.cos;
    out[1] = -turn.sin;
    out[2] = turn.sin;
    out[3] = turn.cos;
}

void compute_hue(float *sectors, int8_t hue)
{
    float h[4];
    create_hue_matrix(hue, h);
    const qz::sector_matrix turn = {h[0], h[1], h[2], h[3]};
    for (ptrdiff_t i = 0; i < qz::sector_count; ++i) {
        float *m = sectors + 4 * i;
        const qz::sector_matrix turned = turn * qz::sector_matrix{m[0], m[1], m[2], m[3]};
        m[0] = clamped(turned.m0);
        m[1] = clamped(turned.m1);
        m[2] = clamped(turned.m2);
        m[3] = clamped(turned.m3);
    }
}

void apply_manual_hue_to_ccms(float *ccms, uint32_t count, uint32_t disabled, int8_t hue)
{
    if (disabled != 0)
        return;

    // In single precision, unlike create_hue_matrix(), and turning the other way.
    const float share = hue < 0 ? static_cast<float>(hue) * 0.0078125f : static_cast<float>(hue) / 127.0f;
    const rotation turn(share * 3.1416f);
    const qz::matrix_3x3 turn_chroma = {
        1.0f, 0.0f,      0.0f,     //
        0.0f, turn.cos,  turn.sin, //
        0.0f, -turn.sin, turn.cos, //
    };

    for (size_t i = 0; i < count; ++i) {
        float *m = ccms + i * turn_chroma.size();
        qz::matrix_3x3 on_yuv;
        qz::matrix_3x3 turned;
        MulMtx3x3(on_yuv.data(), m, qz::rgb_to_yuv_matrix.data());
        MulMtx3x3(turned.data(), on_yuv.data(), turn_chroma.data());
        MulMtx3x3(m, turned.data(), qz::yuv_to_rgb_matrix.data());
        for (float *row = m; row != m + turn_chroma.size(); row += 3)
            row[1] -= row[0] + row[1] + row[2] - 1.0f;
    }
}
