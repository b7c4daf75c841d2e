// Saved makernotes: their records, taken apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/base/fields.h"
#include "qz_mkn.h"

namespace qz::desk {

struct makernote_record {
    uint32_t name;
    uint32_t format; // see qz_mkn_format
    uint32_t count;
    byte_view data; // count elements
    std::string key;

    bool is_text() const { return format == QZ_MKN_TEXT; }
    std::string text() const { return {data.begin(), data.end()}; }
    std::vector<int64_t> values() const;
};

struct saved_makernote {
    uint32_t dropped; // records that the makernote could not keep
    std::vector<makernote_record> records;
};

byte_buffer save_makernote(const qz_mkn *makernote);

// True when the bytes begin as a saved makernote does.
bool is_makernote(byte_view bytes);

// Fails with the offset of what is wrong. The views point into the bytes.
saved_makernote read_makernote(const std::string &file, byte_view bytes);

// The elements' type; nothing for a number that is no format.
std::optional<element> makernote_element(uint32_t format);

// "u16", or empty for a number that is no format.
std::string_view makernote_format_name(uint32_t format);

// What the ISP library's record of a name holds; empty for other names.
std::string_view makernote_record_name(uint32_t name);

} // namespace qz::desk
