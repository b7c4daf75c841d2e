#!/bin/bash
# Builds the library with another compiler and at other levels than the native build's, puts each build below the
# programs of the native build, and runs the sample scene and the library's suites on it: the results stay the same.
#
#   scripts/determinism.sh [VARIANT...]     compiler and level, such as clang-O0
set -euo pipefail
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- gcc-O0 clang-O0 clang-O3 # the native build is gcc-O3
for variant; do
    directory=$PWD/build/$variant
    compiler=${variant%-*}
    flags=-${variant#*-}
    cmake -S . -B "$directory" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_C_COMPILER="$compiler" \
        -DCMAKE_CXX_COMPILER="${compiler/gcc/g++}" -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
        -DQZ_ISP_TOOLS=OFF -DQZ_ISP_EXAMPLES=OFF -DQZ_ISP_TESTS=OFF >/dev/null
    cmake --build "$directory" --target qz_isp
    echo "$variant"
    LD_LIBRARY_PATH=$directory ctest --preset native --parallel "$(nproc)" --no-tests=error --progress \
        --exclude-regex '^shipped|^tool_|fault|\.on_'
done
