// Frames of arbitrary inputs on one context: every pointer null or not, every bit pattern of every number.
#include "qz_isp/frame.h"

#include <algorithm>
#include <optional>

#include <sanitizer/asan_interface.h>

#include "fuzz/containers.h"
#include "fuzz/frame_bytes.h"
#include "fuzz/input.h"
#include "qz_isp/context.h"
#include "qz_mkn.h"
#include "tests/allocation_faults.h"

namespace {

using fuzz::expect;

// The caller's characterisation, gone once the context is made.
isp_context *make_context(const fuzz::setup_bytes &setup, const isp_blob &container, qz_mkn *makernote)
{
    const uint32_t count = setup.entries % fuzz::max_entries;
    const fuzz::exact<isp_sensor_description> sensor(1);
    const fuzz::exact<isp_entry_table_header> header(1);
    const fuzz::exact<uint8_t> table(size_t{16} * count);
    sensor[0] = setup.sensor;
    header[0].entry_count = count;
    isp_cmc cmc = {};
    if ((setup.flags & fuzz::setup_sensor) != 0)
        cmc.sensor_description = sensor.data();
    if ((setup.flags & fuzz::setup_entry_header) != 0)
        cmc.entry_table_header = header.data();
    if ((setup.flags & fuzz::setup_entry_table) != 0)
        cmc.entry_table = table.data();
    return qz_isp_2_7_init(&container, 4, 4, (setup.flags & fuzz::setup_cmc) != 0 ? &cmc : nullptr, makernote);
}

// The samples of one curve or grid, or null.
class samples {
  public:
    samples(bool present, size_t count, fuzz::byte_view pool)
    {
        if (!present)
            return;
        block_.emplace(count);
        fuzz::fill(block_->elements(), pool);
    }

    const float *data() const { return block_ ? block_->data() : nullptr; }

  private:
    std::optional<fuzz::exact<float>> block_;
};

// Sizes stay as they are where there is nothing that has them.
fuzz::frame_bytes limited(fuzz::frame_bytes frame)
{
    if ((frame.flags & fuzz::frame_curves) != 0)
        frame.gamma.point_count %= fuzz::max_points;
    if ((frame.flags & fuzz::frame_grids) != 0) {
        frame.lsc.width %= fuzz::max_side;
        frame.lsc.height %= fuzz::max_side;
    }
    return frame;
}

// One frame's inputs as the caller holds them.
class caller {
  public:
    caller(const fuzz::frame_bytes &frame, fuzz::byte_view pool)
        : held_(limited(frame)), curves_{curve(0, pool), curve(1, pool), curve(2, pool)}, grids_{grid(0, pool),
                                                                                                 grid(1, pool),
                                                                                                 grid(2, pool),
                                                                                                 grid(3, pool)}
    {
        std::ranges::transform(curves_, held_.gamma.curve, &samples::data);
        std::ranges::transform(grids_, held_.lsc.grid, &samples::data);
        selection_list_[0] = held_.selection_list;
        isp_input_params &params = held_.controls;
        params.frame = present(fuzz::frame_size, held_.size);
        params.exposure = present(fuzz::frame_exposure, held_.exposure);
        params.scene = present(fuzz::frame_scene, held_.scene);
        params.gamma = present(fuzz::frame_gamma, held_.gamma);
        params.colour = present(fuzz::frame_colour, held_.colour);
        params.lsc = present(fuzz::frame_lsc, held_.lsc);
        params.aux_size = present(fuzz::frame_aux_size, held_.aux_size);
        params.selection_list = present(fuzz::frame_selection_list, selection_list_[0]);
    }

    const isp_input_params *input() const { return present(fuzz::frame_input, held_.controls); }

  private:
    template <typename T>
    const T *present(uint32_t flag, const T &value) const
    {
        return (held_.flags & flag) != 0 ? &value : nullptr;
    }

    samples curve(unsigned channel, fuzz::byte_view pool) const
    {
        return {(held_.flags & fuzz::frame_first_curve << channel) != 0, held_.gamma.point_count, pool};
    }

    samples grid(unsigned channel, fuzz::byte_view pool) const
    {
        return {(held_.flags & fuzz::frame_first_grid << channel) != 0, size_t{held_.lsc.width} * held_.lsc.height,
                pool};
    }

    fuzz::frame_bytes held_;
    fuzz::exact<uint32_t> selection_list_{1}; // no more of it is read
    samples curves_[3];
    samples grids_[4];
};

void check_makernote(const qz_mkn *makernote)
{
    qz_mkn_record record = {};
    for (uint32_t i = 0; i < qz_mkn_record_count(makernote); ++i) {
        expect(qz_mkn_get_record(makernote, i, &record), "every record of the makernote can be read");
        expect(record.size == 0 || __asan_region_is_poisoned(const_cast<void *>(record.data), record.size) == nullptr,
               "a record of the makernote has its bytes");
    }
}

void run_frame(isp_context *context, const isp_input_params *input)
{
    isp_output_desc output = {nullptr, 0};
    expect(qz_isp_2_7_run(context, input, &output) == 0, "a frame gives 0");
    expect(output.record == context->aic_output, "the record is the context's");
    if (input == nullptr) {
        expect(output.bytes_used == 0, "without an input nothing is computed");
        return;
    }
    const bool shading = input->lsc != nullptr && input->lsc->enable != 0;
    const uint32_t block = shading ? output.record->lens_shading.size : 0;
    expect(!shading || (block >= 8 && block % 8 == 0), "the lens shading block is its header and tables");
    expect(output.bytes_used == AIC_FIXED_SIZE + block && output.bytes_used <= AIC_RECORD_SIZE,
           "bytes in use are the fixed part and the lens shading block");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    fuzz::input in(bytes, size);
    const auto setup = in.take<fuzz::setup_bytes>();
    fuzz::frame_bytes frames[fuzz::max_frames] = {};
    const std::span used = std::span(frames).first(setup.frames % fuzz::max_frames + 1);
    for (fuzz::frame_bytes &frame : used)
        frame = in.take<fuzz::frame_bytes>();
    const fuzz::byte_view pool = in.take_bytes(setup.sample_bytes);
    const fuzz::exact<uint8_t> container(in.rest().size());
    std::ranges::copy(in.rest(), container.data());
    if ((setup.flags & fuzz::setup_repaired) != 0)
        fuzz::repair(container.elements());

    qz_mkn *makernote = (setup.flags & fuzz::setup_makernote) != 0 ? qz_mkn_create() : nullptr;
    const long before = faults::live_blocks();
    faults::fail_allocation(setup.failing % 128 - 1L);
    isp_context *context = make_context(setup, {container.data(), static_cast<uint32_t>(container.size())}, makernote);
    if (context != nullptr) {
        for (const fuzz::frame_bytes &frame : used)
            run_frame(context, caller(frame, pool).input());
    }
    faults::fail_allocation(faults::never);
    qz_isp_2_7_deinit(context);
    expect(faults::live_blocks() == before, "the library frees what it allocates");
    if (makernote != nullptr)
        check_makernote(makernote);
    qz_mkn_destroy(makernote);
    return 0;
}
