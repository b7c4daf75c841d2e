// The bivariate polynomial of degree 4 that shading grids are fitted with. Order of its terms:
// 1, x, y, x2, xy, y2, x3, x2y, xy2, y3, x4, x3y, x2y2, xy3, y4.
#pragma once

namespace qz {

inline constexpr int polynomial_terms = 15;

} // namespace qz
