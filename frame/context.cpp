// Context and lifecycle.
#include "qz_isp/context.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "qz_isp/error.h"
#include "qz_isp/makernote_records.h"
#include "qz_log.h"
#include "qz_mkn.h"

namespace qz {
namespace {

constexpr char version[] = "v2.0_012.000_002";
constexpr char version_record_prefix[] = "QZ_ISP 2.6.1 ";
constexpr size_t cmc_region_size = 208;
constexpr size_t key_region_size = 24;
constexpr uint64_t rgbs_cell_size = sizeof(isp_rgbs_cell);

static_assert(sizeof(isp_cmc) <= cmc_region_size);
static_assert(QZ_MKN_KEY_LENGTH < key_region_size);
static_assert(rgbs_cell_size == 5);

constexpr uint64_t round8(uint64_t size)
{
    return (size + 7) & ~uint64_t{7};
}

// Hands out the regions of the context's allocation one after the other.
class region_cursor {
  public:
    explicit region_cursor(void *start) : next_(static_cast<uint8_t *>(start)) {}

    template <typename T>
    T *take(uint64_t size)
    {
        void *region = next_;
        next_ += size;
        return static_cast<T *>(region);
    }

  private:
    uint8_t *next_;
};

constexpr uint64_t context_size(uint32_t cells)
{
    return round8(sizeof(isp_context)) + cmc_region_size + sizeof(rgbs_grid_desc) + round8(rgbs_cell_size * cells) +
           sizeof(af_grid_desc) + 2 * round8(sizeof(uint32_t) * uint64_t{cells}) + key_region_size +
           round8(AIC_RECORD_SIZE);
}
static_assert(sizeof(void *) != 4 || (context_size(0) == 35600 && context_size(15) == 35808));

void lay_out(isp_context *context, uint32_t cells)
{
    region_cursor cursor(context);
    cursor.take<isp_context>(round8(sizeof(isp_context)));
    context->cmc = cursor.take<isp_cmc>(cmc_region_size);
    context->rgbs_grid = cursor.take<rgbs_grid_desc>(sizeof(rgbs_grid_desc));
    context->rgbs_grid->cells = cursor.take<isp_rgbs_cell>(round8(rgbs_cell_size * cells));
    context->af_grid = cursor.take<af_grid_desc>(sizeof(af_grid_desc));
    context->af_grid->filter_1 = cursor.take<uint32_t>(round8(sizeof(uint32_t) * uint64_t{cells}));
    context->af_grid->filter_2 = cursor.take<uint32_t>(round8(sizeof(uint32_t) * uint64_t{cells}));
    context->mkn_key = cursor.take<char>(key_region_size);
    context->aic_output = cursor.take<aic_record>(AIC_RECORD_SIZE);
    context->grid_capacity = cells;
}

void build_key(char *key)
{
    constexpr const char *pieces[] = QZ_MKN_KEY_PIECES;
    constexpr size_t piece_length = QZ_MKN_KEY_LENGTH / std::size(pieces);
    for (const char *piece : pieces) {
        std::memcpy(key, piece, piece_length);
        key += piece_length;
    }
    *key = '\0';
}

void add_version_record(const isp_context &context)
{
    char text[256];
    const int length = std::snprintf(text, sizeof text, "%s%s", version_record_prefix, version);
    qz_mkn_add_record(context.makernote, QZ_MKN_TEXT, ISP_MAKERNOTE_VERSION, text, static_cast<uint32_t>(length),
                      context.mkn_key);
}

} // namespace
} // namespace qz

isp_context *qz_isp_2_7_init(const isp_blob *container, uint32_t grid_width, uint32_t grid_height, const isp_cmc *cmc,
                             qz_mkn *makernote)
{
    const uint32_t cells = grid_width * grid_height;
    const uint64_t size = qz::context_size(cells);
    auto *context = size <= SIZE_MAX ? static_cast<isp_context *>(std::calloc(1, static_cast<size_t>(size))) : nullptr;
    qz_log(QZ_LOG_INFO, "QZ ISP 2.7 VERSION %s", qz::version);
    if (context == nullptr)
        return nullptr;

    qz::lay_out(context, cells);
    copy_cmc(context->cmc, cmc);
    qz::build_key(context->mkn_key);
    context->makernote = makernote;
    if (makernote != nullptr)
        qz::add_version_record(*context);
    if (isp_parse(container, context) != ISP_SUCCESS) {
        qz_isp_2_7_deinit(context);
        return nullptr;
    }
    return context;
}

void qz_isp_2_7_deinit(isp_context *context)
{
    isp_parse_deinit(context);
    if (context == nullptr)
        return;
    cmc_deinit(context->cmc);
    std::free(context);
}

uint32_t isp_get_aic_output_size_2_7(void)
{
    return AIC_RECORD_SIZE;
}
