#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/subjects.h"
#include "qz_isp/checksum.h"

#ifdef QZ_BENCH_XXHASH
#define XXH_INLINE_ALL
#include <xxhash.h>
#endif

namespace bench {

namespace {

volatile uint64_t kept; // results go here, so that no contender's work is dropped

} // namespace

void register_checksum()
{
    for (const auto &[bytes, name] :
         {std::pair<uint32_t, std::string>{4096, "4 KiB"}, {1u << 20, "1 MiB"}, {64u << 20, "64 MiB"}}) {
        const uint32_t size = bytes;
        const auto buffer = std::make_shared<std::vector<unsigned char>>(size);
        for (size_t i = 0; i < size; ++i)
            (*buffer)[i] = static_cast<unsigned char>(i * 167);
        std::vector<peer> peers;
#ifdef QZ_BENCH_XXHASH
        peers.push_back({"XXH3", 1.0, [=] { kept = XXH3_64bits(buffer->data(), size); }});
#endif
        compare(
            "get_checksum", name, [=] { kept = get_checksum(buffer->data(), size); }, std::move(peers));
    }
}

} // namespace bench
