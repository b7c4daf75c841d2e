#include <cstdlib>

#include "qz_isp/error.h"
#include "qz_isp/polynomial.h"
#include "util/polynomial_terms.h"

namespace {

constexpr int terms = qz::polynomial_terms;
constexpr int channels = 4;

float *zeroed_vector()
{
    return static_cast<float *>(calloc(terms, sizeof(float)));
}

void project(const float *basis_t, const float *grid, uint32_t samples, float *b)
{
    for (int k = 0; k < terms; ++k, basis_t += samples) {
        float sum = 0.0f;
        for (uint32_t p = 0; p < samples; ++p)
            sum += basis_t[p] * grid[p];
        b[k] = sum;
    }
}

void substitute_forward(const float *lu, const float *b, float *z)
{
    for (int k = 0; k < terms; ++k) {
        float sum = 0.0f;
        for (int m = 0; m < k; ++m)
            sum += lu[k * terms + m] * z[m];
        z[k] = b[k] - sum;
    }
}

void substitute_back(const float *lu, const float *z, float *c)
{
    for (int k = terms - 1; k >= 0; --k) {
        float sum = 0.0f;
        for (int m = k + 1; m < terms; ++m)
            sum += lu[k * terms + m] * c[m];
        c[k] = (z[k] - sum) / lu[k * terms + k];
    }
}

} // namespace

uint32_t lsc_polynomial_upscale_float(const float *basis_t, const float *lu, const uint32_t *, const float *const *in,
                                      float *const *out, uint16_t in_w, uint16_t in_h, uint16_t out_w, uint16_t out_h,
                                      uint16_t n)
{
    if (n != terms)
        return ISP_STEP_FAILED;
    float *b = zeroed_vector();
    float *c = zeroed_vector();
    uint32_t status = b != nullptr && c != nullptr ? ISP_SUCCESS : ISP_STEP_FAILED;
    for (int channel = 0; channel < channels && status == ISP_SUCCESS; ++channel) {
        project(basis_t, in[channel], static_cast<uint32_t>(in_w) * in_h, b);
        float *z = zeroed_vector();
        if (z == nullptr) {
            status = ISP_STEP_FAILED;
            break;
        }
        substitute_forward(lu, b, z);
        substitute_back(lu, z, c);
        free(z);
        do_polynomial_upscale(out[channel], c, in_w, in_h, out_w, out_h);
    }
    free(c);
    free(b);
    return status;
}
