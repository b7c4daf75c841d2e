#include "desk/sweep/shard.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/base/numbers.h"

namespace qz::desk {

row_span shard_rows(const std::optional<std::string> &shard, uint64_t rows)
{
    if (!shard)
        return {0, rows, true};
    const size_t slash = std::min(shard->find('/'), shard->size());
    const uint64_t number = whole_number_of(std::string_view(*shard).substr(0, slash)).value_or(0);
    const uint64_t count =
        whole_number_of(std::string_view(*shard).substr(std::min(slash + 1, shard->size()))).value_or(0);
    if (number < 1 || number > count)
        fail({std::nullopt, "shard", fmt::format("\"{}\"", *shard), "I/N, shard I of N with I from 1 to N"});
    const auto start = [&](uint64_t before) { return rows / count * before + std::min(rows % count, before); };
    return {start(number - 1), start(number), number == 1};
}

} // namespace qz::desk
