// The makernote records of one frame, by the names that the library gives them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "qz_mkn.h"

namespace qz::desk {

struct makernote_kind {
    std::string_view name; // "white_balance"
    uint32_t number;
    uint32_t format;
    uint32_t count;       // elements that a frame may have
    bool count_is_varied; // a frame may have fewer

    bool is_text() const { return format == QZ_MKN_TEXT; }
};

// In the order of appending.
std::span<const makernote_kind> makernote_kinds();

class makernote_values {
  public:
    makernote_values() : records_(makernote_kinds().size()) {}

    // The record of the start, and those from first_record on. They must stay in the makernote.
    void read(const qz_mkn *makernote, uint32_t first_record);

    // An element of a kind's records, which are taken one after the other; nothing where the frame has fewer.
    std::optional<int64_t> number(size_t kind, uint32_t index) const;
    std::optional<std::string_view> text(size_t kind) const;

  private:
    std::vector<std::vector<qz_mkn_record>> records_; // as in makernote_kinds()
};

} // namespace qz::desk
