// What a frame leaves in the makernote: one line for each record, its name, element type, count and first values.
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>

#include "qz_isp/qz_isp.h"
#include "qz_mkn.h"

namespace {

using context_ptr = std::unique_ptr<isp_context, decltype(&qz_isp_2_7_deinit)>;
using makernote_ptr = std::unique_ptr<qz_mkn, decltype(&qz_mkn_destroy)>;

template <typename T>
void print_values(const qz_mkn_record &record)
{
    constexpr uint32_t shown = 6;
    for (uint32_t i = 0; i < std::min(record.count, shown); ++i) {
        T value;
        std::memcpy(&value, static_cast<const char *>(record.data) + i * sizeof value, sizeof value);
        std::printf(" %" PRId64, static_cast<int64_t>(value));
    }
    std::puts(record.count > shown ? " ..." : "");
}

void print(const qz_mkn_record &record)
{
    static const char *const types[] = {"?", "i8", "u8", "i16", "u16", "i32", "u32", "?", "?", "text"};
    std::printf("%5" PRIu32 " %-4s x %-4" PRIu32, record.name, types[record.format], record.count);
    switch (record.format) {
    case QZ_MKN_I8: return print_values<int8_t>(record);
    case QZ_MKN_U8: return print_values<uint8_t>(record);
    case QZ_MKN_I16: return print_values<int16_t>(record);
    case QZ_MKN_U16: return print_values<uint16_t>(record);
    case QZ_MKN_I32: return print_values<int32_t>(record);
    case QZ_MKN_U32: return print_values<uint32_t>(record);
    default: std::printf(" %.*s\n", static_cast<int>(record.count), static_cast<const char *>(record.data));
    }
}

} // namespace

int main()
{
    // A container without records: every block takes its defaults. A real one comes from the sensor's maker.
    static const unsigned char empty_container[24] = {'V', 'U', 'X', 'B'};
    const isp_blob container = {empty_container, sizeof empty_container};

    const makernote_ptr makernote(qz_mkn_create(), qz_mkn_destroy);
    const context_ptr context(qz_isp_2_7_init(&container, 80, 60, nullptr, makernote.get()), qz_isp_2_7_deinit);
    if (makernote == nullptr || context == nullptr) {
        std::fputs("makernote: no memory\n", stderr);
        return 1;
    }

    isp_input_params input = {};
    input.nr_mode = 2;
    input.edge_mode = 1;
    isp_output_desc output = {};
    if (qz_isp_2_7_run(context.get(), &input, &output) != ISP_SUCCESS)
        return 1;

    qz_mkn_record record = {};
    for (uint32_t i = 0; qz_mkn_get_record(makernote.get(), i, &record); ++i)
        print(record);
    return 0;
}
