// Transposition between views of any strides.
#pragma once

#include <cstdint>

#include "util/matrix/matrix_view.h"

namespace qz {

// to (c, r) = from (r, c) for the rows and columns of the source, which the target must not overlap.
void transpose(const source_view &from, const target_view &to, int32_t columns, int32_t rows);

// to (r, c) = from (r, c).
inline void copy(const source_view &from, const target_view &to, int32_t columns, int32_t rows)
{
    transpose(from, to.transposed(), columns, rows);
}

} // namespace qz
