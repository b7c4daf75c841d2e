#include "makernote_file.h"

#include <algorithm>

#include <fmt/format.h>

#include "error.h"
#include "tuning_container.h"

namespace qz::tool {

namespace {

struct element_format {
    uint32_t format;
    std::string_view name;
    element type;
};

constexpr element_format formats[] = {{QZ_MKN_I8, "i8", element::i8},    {QZ_MKN_U8, "u8", element::u8},
                                      {QZ_MKN_I16, "i16", element::i16}, {QZ_MKN_U16, "u16", element::u16},
                                      {QZ_MKN_I32, "i32", element::i32}, {QZ_MKN_U32, "u32", element::u32},
                                      {QZ_MKN_TEXT, "text", element::u8}};

struct named_record {
    uint32_t name;
    std::string_view text;
};

constexpr named_record names[] = {
    {512, "white_balance"},
    {514, "black_level and the next block's id"},
    {516, "block_22"},
    {517, "defect_pixel"},
    {518, "noise_reduction"},
    {519, "edge_enhancement"},
    {520, "temporal_noise_reduction"},
    {521, "xnr"},
    {523, "rec_16, first six values"},
    {524, "macc"},
    {527, "lens_shading, enable to format"},
    {528, "lens_shading, two rows of table 0"},
    {530, "rec_3"},
    {531, "fringe_control: exponent, fields 4 to 11, fields 0 to 3"},
    {532, "chroma_nr"},
    {533, "ctc"},
    {534, "gamma_0 table"},
    {535, "rec_13_b, rec_13_a"},
    {537, "yuv_to_rgb"},
    {538, "version"},
    {540, "gamma input: 0 none, 2 curves"},
    {541, "y_edge_enhancement"},
    {542, "macc_shift"},
    {543, "manual controls"},
    {544, "frame geometry"},
    {545, "block_9"},
    {546, "long_3"},
    {547, "long_5 in 16-bit halves"},
    {549, "long_6 in 16-bit halves"},
    {550, "long_7 in 16-bit halves"},
    {551, "long_13 in 16-bit halves"},
    {553, "long_11 in 16-bit halves"},
    {554, "long_12 in 16-bit halves"},
    {528 + 65536, "lens_shading, all tables"},
};

const element_format *find_format(uint32_t format)
{
    const auto *const found = std::ranges::find(formats, format, &element_format::format);
    return found != std::end(formats) ? found : nullptr;
}

class makernote_reader {
  public:
    makernote_reader(const std::string &file, byte_view bytes) : file_(file), bytes_(bytes) {}

    saved_makernote read()
    {
        constexpr size_t version_at = offsetof(qz_mkn_saved_header, version);
        expect(sizeof(qz_mkn_saved_header), "the header");
        if (word(0) != QZ_MKN_SAVED_TAG)
            throw file_error(file_, "offset 0", fmt::format("the bytes {}", hex_text(bytes_.first(4))),
                             "the tag \"QMKN\" (514d4b4e) of a saved makernote");
        if (word(version_at) != QZ_MKN_SAVED_VERSION)
            throw file_error(file_, fmt::format("offset {}", version_at), fmt::format("version {}", word(version_at)),
                             fmt::format("version {}", QZ_MKN_SAVED_VERSION));
        saved_makernote makernote = {word(offsetof(qz_mkn_saved_header, dropped)), {}};
        const uint32_t count = word(offsetof(qz_mkn_saved_header, count));
        offset_ = sizeof(qz_mkn_saved_header);
        for (uint32_t i = 0; i < count; ++i)
            makernote.records.push_back(read_record());
        if (offset_ != bytes_.size())
            throw file_error(file_, fmt::format("offset {}", offset_),
                             fmt::format("{} more bytes", bytes_.size() - offset_),
                             fmt::format("the end, after {} records", count));
        return makernote;
    }

  private:
    uint32_t word(size_t offset) const { return read_le<uint32_t>(bytes_, offset_ + offset); }

    void expect(uint64_t size, std::string_view what) const
    {
        if (bytes_.size() - offset_ < size)
            throw file_error(file_, fmt::format("offset {}", offset_), fmt::format("{} bytes", bytes_.size() - offset_),
                             fmt::format("the {} of {}", size, what));
    }

    makernote_record read_record()
    {
        expect(sizeof(qz_mkn_saved_record), "a record's header");
        makernote_record record = {word(offsetof(qz_mkn_saved_record, name)),
                                   word(offsetof(qz_mkn_saved_record, format)),
                                   word(offsetof(qz_mkn_saved_record, count)),
                                   {},
                                   {}};
        const uint32_t key_size = word(offsetof(qz_mkn_saved_record, key_size));
        const element_format *format = find_format(record.format);
        if (format == nullptr)
            throw file_error(file_, fmt::format("offset {}", offset_), fmt::format("format {}", record.format),
                             "1 to 6 or 9");
        const uint64_t size = uint64_t{record.count} * element_size(format->type);
        const uint64_t padded = (size + key_size + 3) & ~uint64_t{3};
        expect(sizeof(qz_mkn_saved_record) + padded, fmt::format("record {}", record.name));
        const byte_view rest = bytes_.subspan(offset_ + sizeof(qz_mkn_saved_record));
        record.data = rest.first(static_cast<size_t>(size));
        const byte_view key = rest.subspan(static_cast<size_t>(size), key_size);
        record.key.assign(key.begin(), key.end());
        offset_ += sizeof(qz_mkn_saved_record) + static_cast<size_t>(padded);
        return record;
    }

    const std::string &file_;
    byte_view bytes_;
    size_t offset_ = 0;
};

} // namespace

std::vector<int64_t> makernote_record::values() const
{
    const field described = {"", find_format(format)->type, count, 1, 0, true};
    std::vector<int64_t> values(count);
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = integer_at(described, data.data(), i);
    return values;
}

byte_buffer save_makernote(const qz_mkn *makernote)
{
    byte_buffer bytes(qz_mkn_saved_size(makernote));
    qz_mkn_save(makernote, bytes.data());
    return bytes;
}

saved_makernote read_makernote(const std::string &file, byte_view bytes)
{
    return makernote_reader(file, bytes).read();
}

std::string_view makernote_format_name(uint32_t format)
{
    const element_format *found = find_format(format);
    return found != nullptr ? found->name : "";
}

std::string_view makernote_record_name(uint32_t name)
{
    const auto *const found = std::ranges::find(names, name, &named_record::name);
    return found != std::end(names) ? found->text : "";
}

} // namespace qz::tool
