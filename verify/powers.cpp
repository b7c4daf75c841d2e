// Compares the powers of the tone curves with MPFR: all 255 + 255 exponents, and every float from 2^-25 to 2^25, which
// holds all bases of tables of 16 bits and all bases of float tables that are not left to exact_power().
//
//   verify-powers [STEP]     every STEPth float, 1 without
//
// A power whose estimate lies off a rounding boundary by more than the estimate can err is the estimate's float; all
// others are computed by MPFR. So are one estimate in 4096, to see how much they err, and all integers up to 65535 for
// contrast. Takes hours on a few cores. Ends with 1 when a power is wrong or an estimate errs too much.
#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

#include <mpfr.h>

#include "color/tone_curves.h"
#include "util/power/power.h"
#include "util/power/power_estimate.h"

namespace {

struct counts {
    uint64_t bases = 0;
    uint64_t near_boundary = 0;
    uint64_t against_mpfr = 0;
    uint64_t wrong = 0;
    double largest_error = 0.0; // of an estimate, in units of its last place

    void add(const counts &other)
    {
        bases += other.bases;
        near_boundary += other.near_boundary;
        against_mpfr += other.against_mpfr;
        wrong += other.wrong;
        largest_error = std::max(largest_error, other.largest_error);
    }
};

class number {
  public:
    explicit number(mpfr_prec_t bits) { mpfr_init2(value_, bits); }
    ~number() { mpfr_clear(value_); }
    number(const number &) = delete;
    number &operator=(const number &) = delete;

    mpfr_ptr get() { return value_; }

  private:
    mpfr_t value_;
};

// The powers of one exponent.
class verifier {
  public:
    explicit verifier(float exponent) : exponent_(exponent) { mpfr_set_flt(power_of_.get(), exponent, MPFR_RNDN); }

    void every_float(uint32_t step)
    {
        std::vector<float> powers(4096);
        for (uint64_t first = qz::first_ordinary; first < qz::ordinary_end; first += powers.size() * step) {
            const auto bits = [&](size_t i) { return static_cast<uint32_t>(first + i * step); };
            while (bits(powers.size() - 1) >= qz::ordinary_end)
                powers.pop_back();
            for (size_t i = 0; i < powers.size(); ++i)
                powers[i] = std::bit_cast<float>(bits(i));
            qz::powers(powers.data(), powers.size(), exponent_);
            for (size_t i = 0; i < powers.size(); ++i)
                check(bits(i), powers[i]);
            look_at_estimate(bits(powers.size() / 2));
        }
    }

    void every_integer()
    {
        std::vector<float> powers(65535);
        for (size_t i = 0; i < powers.size(); ++i)
            powers[i] = static_cast<float>(i + 1);
        qz::powers(powers.data(), powers.size(), exponent_);
        for (size_t i = 0; i < powers.size(); ++i)
            compare(static_cast<float>(i + 1), powers[i]);
        found.bases += powers.size();
    }

    counts found;

  private:
    void check(uint32_t base, float power)
    {
        ++found.bases;
        const uint64_t estimate = qz::estimate_power(base, exponent_);
        uint64_t off = 0;
        qz::tell_boundary(off, estimate);
        if (off != 0) {
            found.wrong += static_cast<float>(std::bit_cast<double>(estimate)) != power ? 1 : 0;
        } else {
            ++found.near_boundary;
            compare(std::bit_cast<float>(base), power);
        }
    }

    void compare(float base, float power)
    {
        ++found.against_mpfr;
        mpfr_set_flt(base_.get(), base, MPFR_RNDN);
        mpfr_pow(nearest_.get(), base_.get(), power_of_.get(), MPFR_RNDN);
        const float expected = mpfr_get_flt(nearest_.get(), MPFR_RNDN);
        if (power != expected && ++found.wrong == 1)
            std::printf("%a ^ %a: found %a, expected %a\n", base, exponent_, power, expected);
    }

    void look_at_estimate(uint32_t base)
    {
        const auto estimate = std::bit_cast<double>(qz::estimate_power(base, exponent_));
        mpfr_set_flt(base_.get(), std::bit_cast<float>(base), MPFR_RNDN);
        mpfr_pow(precise_.get(), base_.get(), power_of_.get(), MPFR_RNDN);
        mpfr_sub_d(precise_.get(), precise_.get(), estimate, MPFR_RNDN);
        const double unit = std::ldexp(1.0, std::ilogb(estimate) - 52);
        found.largest_error = std::max(found.largest_error, std::fabs(mpfr_get_d(precise_.get(), MPFR_RNDN)) / unit);
    }

    float exponent_;
    number power_of_{24};
    number base_{24};
    number nearest_{24};
    number precise_{200};
};

} // namespace

int main(int argc, char **argv)
{
    const long step = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1;
    if (step < 1 || step > 1000000) {
        std::fprintf(stderr, "verify-powers: found step %s, expected 1 to 1000000\n", argv[1]);
        return 2;
    }

    constexpr int settings = 256;
    std::atomic<int> next = 0;
    std::mutex lock;
    counts all;
    const auto work = [&] {
        for (int i = next++; i < 2 * settings; i = next++) {
            const auto control = static_cast<int8_t>(i % settings - 128);
            const bool is_contrast = i >= settings;
            if (control == 0) // an exponent of 1
                continue;
            verifier one(is_contrast ? qz::contrast_exponent(control) : qz::brightness_exponent(control));
            one.every_float(static_cast<uint32_t>(step));
            if (is_contrast)
                one.every_integer();
            const std::lock_guard<std::mutex> guard(lock);
            all.add(one.found);
            std::printf("%-10s %4d  %llu powers so far, %llu wrong\n", is_contrast ? "contrast" : "brightness", control,
                        static_cast<unsigned long long>(all.bases), static_cast<unsigned long long>(all.wrong));
            std::fflush(stdout);
        }
        mpfr_free_cache();
    };
    std::vector<std::thread> threads(std::max(1u, std::thread::hardware_concurrency()));
    for (std::thread &thread : threads)
        thread = std::thread(work);
    for (std::thread &thread : threads)
        thread.join();

    std::printf("%llu powers, %llu next to a rounding boundary, %llu compared with MPFR: %llu wrong\n"
                "Estimates err by up to %.0f units of the last place, %llu are allowed for\n",
                static_cast<unsigned long long>(all.bases), static_cast<unsigned long long>(all.near_boundary),
                static_cast<unsigned long long>(all.against_mpfr), static_cast<unsigned long long>(all.wrong),
                all.largest_error, static_cast<unsigned long long>(qz::estimate_error));
    return all.wrong == 0 && all.largest_error < static_cast<double>(qz::estimate_error) ? 0 : 1;
}
