#include "desk/makernote/file.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/error.h"
#include "frame/makernote.h"
#include "qz_isp/makernote_records.h"

namespace qz::desk {

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

static_assert(std::ranges::all_of(formats, [](const element_format &each) {
    return element_size(each.type) == qz::element_size(static_cast<qz_mkn_format>(each.format));
}));

std::string known_formats()
{
    std::vector<uint32_t> numbers;
    for (const element_format &each : formats)
        numbers.push_back(each.format);
    return fmt::format("one of {}", fmt::join(numbers, ", "));
}

struct named_record {
    uint32_t name;
    std::string_view text;
};

#define QZ_NAMED_RECORD(name, number, format, count, content) {number, content},
constexpr named_record names[] = {ISP_MAKERNOTE_RECORDS(QZ_NAMED_RECORD)};
#undef QZ_NAMED_RECORD

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
        if (!is_makernote(bytes_))
            fail({file_, "offset 0", fmt::format("the bytes {}", hex_text(bytes_.first(4))),
                  "the tag \"QMKN\" (514d4b4e) of a saved makernote"});
        if (word(version_at) != QZ_MKN_SAVED_VERSION)
            fail({file_, fmt::format("offset {}", version_at), fmt::format("version {}", word(version_at)),
                  fmt::format("version {}", QZ_MKN_SAVED_VERSION)});
        saved_makernote makernote = {word(offsetof(qz_mkn_saved_header, dropped)), {}};
        const uint32_t count = word(offsetof(qz_mkn_saved_header, count));
        offset_ = sizeof(qz_mkn_saved_header);
        for (uint32_t i = 0; i < count; ++i)
            makernote.records.push_back(read_record());
        if (offset_ != bytes_.size())
            fail({file_, fmt::format("offset {}", offset_), fmt::format("{} more bytes", bytes_.size() - offset_),
                  fmt::format("the end, after {} records", count)});
        return makernote;
    }

  private:
    uint32_t word(size_t offset) const { return read_le<uint32_t>(bytes_, offset_ + offset); }

    void expect(uint64_t size, std::string_view what) const
    {
        if (bytes_.size() - offset_ < size)
            fail({file_, fmt::format("offset {}", offset_), fmt::format("{} bytes", bytes_.size() - offset_),
                  fmt::format("the {} of {}", size, what)});
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
            fail({file_, fmt::format("offset {}", offset_), fmt::format("format {}", record.format), known_formats()});
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

bool is_makernote(byte_view bytes)
{
    return bytes.size() >= sizeof(uint32_t) && read_le<uint32_t>(bytes, 0) == QZ_MKN_SAVED_TAG;
}

saved_makernote read_makernote(const std::string &file, byte_view bytes)
{
    return makernote_reader(file, bytes).read();
}

std::optional<element> makernote_element(uint32_t format)
{
    const element_format *found = find_format(format);
    return found != nullptr ? std::optional(found->type) : std::nullopt;
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

} // namespace qz::desk
