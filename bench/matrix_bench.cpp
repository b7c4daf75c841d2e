#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/eigen_peers.h"
#include "bench/subjects.h"
#include "qz_isp/matrix.h"
#include "qz_isp/polynomial.h"

#ifdef QZ_BENCH_OPENBLAS
#include <cblas.h>
#endif

namespace bench {

namespace {

using floats = std::vector<float>;
using shared_floats = std::shared_ptr<floats>;

constexpr int float_size = sizeof(float);

std::string by(int columns, int rows)
{
    return std::to_string(columns) + 'x' + std::to_string(rows);
}

shared_floats random_floats(int count)
{
    std::mt19937 random(1);
    const auto values = std::make_shared<floats>(count);
    for (float &value : *values)
        value = static_cast<float>(random() >> 8) / 16777216.0f;
    return values;
}

shared_floats room_for(int count)
{
    return std::make_shared<floats>(count);
}

// Eigen as any program has it, with a target, and as it could be compiled for this processor.
void add_eigen([[maybe_unused]] std::vector<peer> &peers, [[maybe_unused]] double at_most, [[maybe_unused]] work plain,
               [[maybe_unused]] work native)
{
#ifdef QZ_BENCH_EIGEN
    peers.push_back({"Eigen", at_most, std::move(plain)});
#ifndef QZ_BENCH_DEVICE_LEVEL
    peers.push_back({"Eigen, -march=native", no_target, std::move(native)});
#endif
#endif
}

#ifdef QZ_BENCH_EIGEN
#define QZ_BENCH_BOTH_EIGENS(call) [=] { eigen_plain::call; }, [=] { eigen_native::call; }
#else
#define QZ_BENCH_BOTH_EIGENS(call) nullptr, nullptr
#endif

void time_product(const std::string &size, int rows, int inner, int columns, double eigen, double openblas)
{
    const shared_floats a = random_floats(rows * inner);
    const shared_floats b = random_floats(inner * columns);
    const shared_floats c = room_for(rows * columns);
    std::vector<peer> peers;
    add_eigen(peers, eigen, QZ_BENCH_BOTH_EIGENS(multiply(a->data(), b->data(), c->data(), rows, inner, columns)));
#ifdef QZ_BENCH_OPENBLAS
    peers.push_back({"OpenBLAS", openblas, [=] {
                         cblas_sgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, rows, columns, inner, 1.0f, a->data(),
                                     inner, b->data(), columns, 0.0f, c->data(), columns);
                     }});
#endif
    compare(
        "mul_mm", size,
        [=] {
            mul_mm(a->data(), inner * float_size, float_size, inner, rows, b->data(), columns * float_size, float_size,
                   columns, inner, c->data(), columns * float_size, float_size);
        },
        std::move(peers));
}

void time_transpose(int rows, int columns)
{
    const shared_floats from = random_floats(rows * columns);
    const shared_floats to = room_for(rows * columns);
    std::vector<peer> peers;
    add_eigen(peers, 0.3, QZ_BENCH_BOTH_EIGENS(transpose(from->data(), to->data(), rows, columns)));
#ifdef QZ_BENCH_OPENBLAS
    peers.push_back({"OpenBLAS somatcopy", 1.5, [=] {
                         cblas_somatcopy(CblasRowMajor, CblasTrans, rows, columns, 1.0f, from->data(), columns,
                                         to->data(), rows);
                     }});
#endif
    compare(
        "transpose_m", by(columns, rows),
        [=] {
            transpose_m(from->data(), columns * float_size, float_size, columns, rows, to->data(), rows * float_size,
                        float_size);
        },
        std::move(peers));
}

void time_factors(int n, double eigen)
{
    const shared_floats a = random_floats(n * n);
    for (int i = 0; i < n; ++i) // no pivoting: a strong diagonal
        (*a)[static_cast<size_t>(i * n + i)] += static_cast<float>(n);
    const shared_floats lu = room_for(n * n);
    const auto index = std::make_shared<std::vector<uint32_t>>(n);
    std::vector<peer> peers;
    add_eigen(peers, eigen, QZ_BENCH_BOTH_EIGENS(factorise(a->data(), lu->data(), n)));
    compare(
        "lu_decomposition_m", std::to_string(n),
        [=] {
            lu_decomposition_m(a->data(), n * float_size, float_size, index->data(), lu->data(), n * float_size,
                               float_size, n);
        },
        std::move(peers));
}

// What the fit of one grid size needs; lu_decomposition() fills it.
struct fit {
    fit(int columns, int rows)
        : width(columns), height(rows), design(room_for(columns * rows * polynomial_terms)),
          transposed(room_for(columns * rows * polynomial_terms)), lu(room_for(polynomial_terms * polynomial_terms)),
          index(std::make_shared<std::vector<uint32_t>>(polynomial_terms))
    {
        run();
    }

    void run() const
    {
        lu_decomposition(design->data(), transposed->data(), lu->data(), index->data(), static_cast<uint16_t>(width),
                         static_cast<uint16_t>(height), polynomial_terms);
    }

    int width, height;
    shared_floats design, transposed, lu;
    std::shared_ptr<std::vector<uint32_t>> index;
};

void time_normal_factors(int width, int height)
{
    const fit ours(width, height);
    const shared_floats design = room_for(width * height * polynomial_terms);
    const shared_floats lu = room_for(polynomial_terms * polynomial_terms);
    std::vector<peer> peers;
    add_eigen(peers, 0.6, QZ_BENCH_BOTH_EIGENS(factorise_normal(design->data(), lu->data(), width, height)));
    compare(
        "lu_decomposition", by(width, height), [=] { ours.run(); }, std::move(peers));
}

struct grids {
    grids(const fit &in_fit, int width, int height) : input(in_fit), out_width(width), out_height(height)
    {
        for (size_t c = 0; c < in.size(); ++c) {
            in[c] = random_floats(input.width * input.height);
            out[c] = room_for(width * height);
            in_data[c] = in[c]->data();
            out_data[c] = out[c]->data();
        }
    }

    fit input;
    int out_width, out_height;
    std::array<shared_floats, 4> in, out;
    std::array<const float *, 4> in_data;
    std::array<float *, 4> out_data;
};

void time_upscale(int in_w, int in_h, int out_w, int out_h)
{
    const auto ours = std::make_shared<grids>(fit(in_w, in_h), out_w, out_h);
    const auto theirs = std::make_shared<grids>(*ours);
    std::vector<peer> peers;
    add_eigen(peers, 0.4,
              QZ_BENCH_BOTH_EIGENS(upscale(theirs->input.design->data(), theirs->input.lu->data(),
                                           theirs->in_data.data(), theirs->out_data.data(), in_w, in_h, out_w, out_h)));
    compare(
        "lsc_polynomial_upscale_float", by(in_w, in_h) + "->" + by(out_w, out_h),
        [=] {
            lsc_polynomial_upscale_float(ours->input.transposed->data(), ours->input.lu->data(), nullptr,
                                         ours->in_data.data(), ours->out_data.data(), static_cast<uint16_t>(in_w),
                                         static_cast<uint16_t>(in_h), static_cast<uint16_t>(out_w),
                                         static_cast<uint16_t>(out_h), polynomial_terms);
        },
        std::move(peers));
    const auto coefficients = random_floats(polynomial_terms);
    compare("do_polynomial_upscale", by(in_w, in_h) + "->" + by(out_w, out_h), [=] {
        do_polynomial_upscale(ours->out_data[0], coefficients->data(), static_cast<uint16_t>(in_w),
                              static_cast<uint16_t>(in_h), static_cast<uint32_t>(out_w), static_cast<uint16_t>(out_h));
    });
}

} // namespace

void register_matrix()
{
    time_product("64x64", 64, 64, 64, 1.0, 1.5);
    time_product("15xN by Nx15, N=2961", 15, 2961, 15, 0.6, 2.0);
    time_factors(15, 0.6);
    time_factors(128, 1.0);
    time_normal_factors(63, 47);
    time_upscale(17, 13, 63, 47);
    time_transpose(512, 512);
}

} // namespace bench
