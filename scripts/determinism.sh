#!/bin/bash
# The same results whatever builds the library: each variant is built and passes the library's suites, and below the
# programs of the native build it gives the records of the sample scene and the digest of random frames.
#
#   scripts/determinism.sh [VARIANT...]     compiler and level, such as clang-O0, with -128 or -256 for the widest
#                                           vectors of its choice; or musl: another C library
set -euo pipefail
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- {gcc,clang}-O{0,1,2,3,s} gcc-O3-{128,256} musl
native=$PWD/build/native

build_library() # directory options...
{
    cmake -S . -B "$1" -G Ninja -DCMAKE_BUILD_TYPE=None -DQZ_ISP_TOOLS=OFF -DQZ_ISP_EXAMPLES=OFF "${@:2}" >/dev/null
    cmake --build "$1" --parallel "$(nproc)"
}

check_variant()
{
    local directory=$PWD/build/$1 compiler level bits
    local -A cxx=([gcc]=g++ [clang]=clang++)
    IFS=- read -r compiler level bits <<<"$1"
    build_library "$directory" -DCMAKE_C_COMPILER="$compiler" -DCMAKE_CXX_COMPILER="${cxx[$compiler]}" \
        -DCMAKE_C_FLAGS="-$level" -DCMAKE_CXX_FLAGS="-$level" -DQZ_ISP_VECTOR_BITS="${bits:-512}"
    ctest --test-dir "$directory" --parallel "$(nproc)" --no-tests=error --progress --output-on-failure \
        --exclude-regex '^shipped'
    LD_LIBRARY_PATH=$directory ctest --preset native --no-tests=error --tests-regex '^sample_record$|^random_frames$'
}

# No program in C++ runs with musl here. A C program is: the frames that qz-isp hands over, made into one.
check_musl()
{
    local directory=$PWD/build/musl musl="-O3 -specs=/usr/lib/x86_64-linux-musl/musl-gcc.specs" version include
    local headers=(-I include -I platform/include)
    version=$(g++ -dumpversion)
    # The headers of the C++ library, which were configured for another C library; none of its code is linked.
    include="-isystem /usr/include/c++/$version -isystem /usr/include/x86_64-linux-gnu/c++/$version"
    build_library "$directory" -DQZ_ISP_TESTS=OFF -DCMAKE_C_FLAGS="$musl" \
        -DCMAKE_CXX_FLAGS="$musl $include '-D__GLIBC_PREREQ(a,b)=0' -D__locale_t=locale_t"

    gcc -std=c99 -shared -fPIC "${headers[@]}" verify/handed_over.c -o "$directory/handed_over.so"
    QZ_HANDED_OVER=$directory/frames.c LD_PRELOAD=$directory/handed_over.so \
        "$native/qz-isp" run --frame all --raw "$directory/expected.aic"
    local program
    for program in "$directory/frames.c" verify/random_frames.c; do
        musl-gcc -std=c99 -ffp-contract=off "${headers[@]}" "$program" -o "$directory/$(basename "$program" .c)" \
            -L"$directory" -lqz_isp -lqz_mkn -lqz_log -Wl,-rpath,"$directory"
    done
    "$directory/frames" >"$directory/found.aic"
    cmp "$directory/expected.aic" "$directory/found.aic"
    diff <("$native/random_frames" 3000 "$native/tests/sample.vuxb" 2>/dev/null) \
        <("$directory/random_frames" 3000 "$native/tests/sample.vuxb" 2>/dev/null)
}

for variant; do
    echo "$variant"
    if [ "$variant" = musl ]; then check_musl; else check_variant "$variant"; fi
done
