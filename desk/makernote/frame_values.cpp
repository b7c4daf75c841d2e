#include "desk/makernote/frame_values.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "desk/makernote/file.h"
#include "desk/record/layout.h"
#include "qz_isp/makernote_records.h"

namespace qz::desk {

namespace {

// A name of the list in small letters.
template <size_t size>
struct small_letters {
    char text[size] = {};

    consteval small_letters(const char (&name)[size]) // NOLINT(google-explicit-constructor): a template argument
    {
        std::ranges::transform(name, text, [](char letter) {
            return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
        });
    }
};

template <small_letters name>
constexpr std::string_view small_name = {name.text, sizeof name.text - 1};

// Elements of a frame: the largest tables where the number varies, and one for each gamma table of their inputs.
consteval uint32_t most_elements(uint32_t number, uint32_t count)
{
    if (number == ISP_MAKERNOTE_GAMMA_INPUT)
        return 3;
    if (number == ISP_MAKERNOTE_GAMMA_TABLE)
        return AIC_GAMMA_MAX_ENTRIES;
    return count != 0 ? count : uint32_t{shading_channels * AIC_LENS_SHADING_MAX_ENTRIES};
}

#define QZ_KIND(name, number, format, count, content)                                                                  \
    {small_name<#name>, number, QZ_MKN_##format, most_elements(number, count), (count) == 0},
constexpr makernote_kind kinds[] = {ISP_MAKERNOTE_RECORDS(QZ_KIND)};
#undef QZ_KIND

} // namespace

std::span<const makernote_kind> makernote_kinds()
{
    return kinds;
}

void makernote_values::read(const qz_mkn *makernote, uint32_t first_record)
{
    for (std::vector<qz_mkn_record> &records : records_)
        records.clear();
    qz_mkn_record record = {};
    for (uint32_t i = 0; qz_mkn_get_record(makernote, i, &record); i = i == 0 ? std::max(first_record, 1u) : i + 1) {
        const auto *const kind = std::ranges::find(kinds, record.name, &makernote_kind::number);
        if (kind != std::end(kinds))
            records_[static_cast<size_t>(kind - std::begin(kinds))].push_back(record);
    }
}

std::optional<int64_t> makernote_values::number(size_t kind, uint32_t index) const
{
    for (const qz_mkn_record &record : records_[kind]) {
        if (index < record.count) {
            const field described = {"",  makernote_element(record.format).value_or(element::u8), record.count, 1, 0,
                                     true};
            return integer_at(described, record.data, index);
        }
        index -= record.count;
    }
    return std::nullopt;
}

std::optional<std::string_view> makernote_values::text(size_t kind) const
{
    if (records_[kind].empty())
        return std::nullopt;
    const qz_mkn_record &record = records_[kind].front();
    return std::string_view(static_cast<const char *>(record.data), record.count);
}

} // namespace qz::desk
