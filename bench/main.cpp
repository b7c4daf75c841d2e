// qz-isp-bench: how long the library's routines take, beside other libraries where these are installed.
#include <benchmark/benchmark.h>

#include "bench/compare.h"
#include "bench/subjects.h"

#ifdef QZ_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif
#ifdef QZ_BENCH_OPENBLAS
#include <cblas.h>
#endif
#ifdef QZ_BENCH_LIBYUV
#include <libyuv.h>
#endif

int main(int argc, char **argv)
{
    // Every contender runs on one thread.
#ifdef QZ_BENCH_OPENCV
    cv::setNumThreads(1);
#endif
#ifdef QZ_BENCH_OPENBLAS
    openblas_set_num_threads(1);
#endif
    // Where the library is built for the device's level, the peers are held to it: OpenCV and OpenBLAS by the
    // environment (make bench-device), as they look at the processor before main().
#if defined(QZ_BENCH_LIBYUV) && defined(QZ_BENCH_DEVICE_LEVEL)
    libyuv::MaskCpuFlags(libyuv::kCpuHasX86 | libyuv::kCpuHasSSE2 | libyuv::kCpuHasSSSE3);
#endif

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    bench::register_frame();
    bench::register_bicubic();
    bench::register_nearest();
    bench::register_statistics();
    bench::register_table_resize();
    bench::register_matrix();
    bench::register_checksum();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    bench::print_ratios();
    return 0;
}
