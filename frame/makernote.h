// Appends to the caller's makernote, or to none.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qz_isp/makernote_records.h"
#include "qz_mkn.h"

namespace qz {

struct makernote_row {
    isp_makernote_record name;
    qz_mkn_format format;
    uint32_t count; // 0: depends on the frame
};

#define QZ_MAKERNOTE_ROW(name, number, format, count, content) {ISP_MAKERNOTE_##name, QZ_MKN_##format, count},
inline constexpr makernote_row makernote_rows[] = {ISP_MAKERNOTE_RECORDS(QZ_MAKERNOTE_ROW)};
#undef QZ_MAKERNOTE_ROW

constexpr makernote_row makernote_row_of(isp_makernote_record name)
{
    const makernote_row *row = makernote_rows;
    while (row->name != name)
        ++row;
    return *row;
}

constexpr size_t element_size(qz_mkn_format format)
{
    if (format == QZ_MKN_I16 || format == QZ_MKN_U16)
        return 2;
    return format == QZ_MKN_I32 || format == QZ_MKN_U32 ? 4 : 1;
}

class makernote {
  public:
    explicit makernote(qz_mkn *handle) : handle_(handle) {}

    qz_mkn *handle() const { return handle_; }

    // A record of a fixed number of elements, the first of data.
    template <isp_makernote_record name, typename T>
    void add(const T &data) const
    {
        constexpr makernote_row row = makernote_row_of(name);
        static_assert(row.count != 0 && row.count * element_size(row.format) <= sizeof data);
        append(row, &data, row.count);
    }

    // A record whose number of elements depends on the frame.
    template <isp_makernote_record name>
    void add(const uint16_t *data, uint32_t count) const
    {
        constexpr makernote_row row = makernote_row_of(name);
        static_assert(row.count == 0 && element_size(row.format) == sizeof *data);
        append(row, data, count);
    }

  private:
    void append(const makernote_row &row, const void *data, uint32_t count) const
    {
        if (handle_ != nullptr)
            qz_mkn_add_record(handle_, row.format, row.name, data, count, nullptr);
    }

    qz_mkn *handle_;
};

} // namespace qz
