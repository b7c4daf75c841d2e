#include <algorithm>
#include <cstdlib>

#include "qz_isp/error.h"
#include "qz_isp/polynomial.h"
#include "util/matrix/block.h"
#include "util/polynomial/polynomial_terms.h"

namespace {

constexpr int terms = qz::polynomial_terms;
constexpr int channels = 4;

struct upscale {
    const float *basis_t, *lu;
    const float *const *in;
    float *const *out;
    uint16_t in_w, in_h, out_w, out_h;

    uint32_t samples() const { return static_cast<uint32_t>(in_w) * in_h; }
};

// The right-hand sides of all channels. Each is a sum over the samples in their order; terms and channels are what is
// worked on side by side.
struct projection {
    const upscale &job;
    float *b; // 15 floats a channel

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        const uint32_t samples = job.samples();
        for (int term = 0; term < terms; term += Lanes) {
            qz::vec<Lanes> sum[channels] = {};
            for (uint32_t p = 0; p < samples; p += Lanes)
                add_samples<Lanes>(sum, term, p, static_cast<int>(std::min<uint32_t>(Lanes, samples - p)));
            for (int channel = 0; channel < channels; ++channel)
                for (int lane = 0; lane < std::min(Lanes, terms - term); ++lane)
                    b[channel * terms + term + lane] = sum[channel][lane];
        }
    }

    // Up to Lanes samples' products with as many terms.
    template <int Lanes>
    QZ_ALWAYS_INLINE void add_samples(qz::vec<Lanes> (&sum)[channels], int term, uint32_t p, int count) const
    {
        const uint32_t samples = job.samples();
        const float *rows = job.basis_t + p;
        alignas(64) float part[Lanes][Lanes]; // a row a term, then a row a sample
        qz::vec<Lanes> square[Lanes];
        for (int k = 0; k < Lanes; ++k) {
            const float *row = rows + static_cast<size_t>(std::min(term + k, terms - 1)) * samples;
            if (count < Lanes) {
                std::fill_n(std::copy_n(row, count, part[k]), Lanes - count, 0.0f);
                row = part[k];
            }
            qz::load(square[k], row);
        }
        qz::transpose_square<Lanes>(square);
        for (int s = 0; s < Lanes; ++s)
            qz::store(part[s], square[s]);
        const float *const grid[channels] = {job.in[0] + p, job.in[1] + p, job.in[2] + p, job.in[3] + p};
        for (int s = 0; s < count; ++s) {
            qz::vec<Lanes> basis;
            qz::load(basis, part[s]);
            for (int channel = 0; channel < channels; ++channel)
                sum[channel] += basis * grid[channel][s];
        }
    }
};

float *zeroed_vectors(size_t count)
{
    return static_cast<float *>(std::calloc(count * terms, sizeof(float)));
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

// All channels side by side, because each waits for its last coefficient in every step. The coefficients of a term lie
// next to each other.
void substitute_back(const float *lu, const float *const *z, float *c)
{
    for (int k = terms - 1; k >= 0; --k) {
        float sum[channels] = {};
        for (int m = k + 1; m < terms; ++m)
            for (int channel = 0; channel < channels; ++channel)
                sum[channel] += lu[k * terms + m] * c[m * channels + channel];
        for (int channel = 0; channel < channels; ++channel)
            c[k * channels + channel] = (z[channel][k] - sum[channel]) / lu[k * terms + k];
    }
}

// Solves for the coefficients of some channels, each with a vector of its own for the half-way result. Returns the
// first channel that there was no memory for.
int solve(const upscale &job, const float *b, float *c, int first, int last)
{
    float *allocated[channels] = {};
    const float *z[channels] = {b, b, b, b}; // anything for channels that are not asked for
    int channel = first;
    while (channel < last && (allocated[channel] = zeroed_vectors(1)) != nullptr) {
        substitute_forward(job.lu, b + static_cast<ptrdiff_t>(channel) * terms, allocated[channel]);
        z[channel] = allocated[channel];
        ++channel;
    }
    substitute_back(job.lu, z, c);
    for (float *vector : allocated)
        std::free(vector);
    return channel;
}

// False when memory runs out; the channels before are written.
bool upscale_channels(const upscale &job, float *b, float *c, int first, int last)
{
    qz::run_widest(projection{job, b});
    const int solved = solve(job, b, c, first, last);
    for (int channel = first; channel < solved; ++channel) {
        float coefficients[terms];
        for (int k = 0; k < terms; ++k)
            coefficients[k] = c[k * channels + channel];
        do_polynomial_upscale(job.out[channel], coefficients, job.in_w, job.in_h, job.out_w, job.out_h);
    }
    return solved == last;
}

bool overlap(const float *a, size_t a_count, const float *b, size_t b_count)
{
    return reinterpret_cast<uintptr_t>(a) < reinterpret_cast<uintptr_t>(b + b_count) &&
           reinterpret_cast<uintptr_t>(b) < reinterpret_cast<uintptr_t>(a + a_count);
}

// Whether a channel's output changes what a later channel reads.
bool channels_depend(const upscale &job)
{
    const size_t out_samples = static_cast<size_t>(job.out_w) * job.out_h;
    for (int channel = 0; channel < channels - 1; ++channel) {
        const float *out = job.out[channel];
        if (overlap(out, out_samples, job.basis_t, size_t{terms} * job.samples()) ||
            overlap(out, out_samples, job.lu, size_t{terms} * terms))
            return true;
        for (int later = channel + 1; later < channels; ++later)
            if (overlap(out, out_samples, job.in[later], job.samples()))
                return true;
    }
    return false;
}

bool upscale_all(const upscale &job, float *b, float *c)
{
    if (!channels_depend(job))
        return upscale_channels(job, b, c, 0, channels);
    for (int channel = 0; channel < channels; ++channel)
        if (!upscale_channels(job, b, c, channel, channel + 1))
            return false;
    return true;
}

} // namespace

uint32_t lsc_polynomial_upscale_float(const float *basis_t, const float *lu, const uint32_t * /*perm*/,
                                      const float *const *in, float *const *out, uint16_t in_w, uint16_t in_h,
                                      uint16_t out_w, uint16_t out_h, uint16_t n)
{
    if (n != terms)
        return ISP_STEP_FAILED;
    float *b = zeroed_vectors(channels);
    float *c = zeroed_vectors(channels);
    const bool done =
        b != nullptr && c != nullptr && upscale_all({basis_t, lu, in, out, in_w, in_h, out_w, out_h}, b, c);
    std::free(c);
    std::free(b);
    return done ? ISP_SUCCESS : ISP_STEP_FAILED;
}
