#include "desk/run/session.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "qz_isp/error.h"

namespace qz::desk {

namespace {

// The library's view of a characterisation; valid while the characterisation lives.
struct bound_characterisation {
    isp_sensor_description sensor;
    std::vector<std::array<uint32_t, 4>> entries;
    isp_entry_table_header header;
    isp_cmc cmc; // points to the members above
};

void bind(const characterisation &source, bound_characterisation &bound)
{
    bound.sensor = source.sensor_description.value_or(isp_sensor_description{});
    bound.entries = source.entries.value_or(std::vector<std::array<uint32_t, 4>>{});
    bound.header = {{0, 0}, static_cast<uint32_t>(bound.entries.size())};
    bound.cmc.sensor_description = source.sensor_description ? &bound.sensor : nullptr;
    bound.cmc.entry_table_header = source.entries ? &bound.header : nullptr;
    bound.cmc.entry_table = source.entries ? bound.entries.data() : nullptr;
}

const float *numbers_of(const curve &numbers)
{
    return numbers ? numbers->data() : nullptr;
}

isp_gamma_params bind(const gamma_inputs &gamma)
{
    return {{numbers_of(gamma.curves[0]), numbers_of(gamma.curves[1]), numbers_of(gamma.curves[2])}, gamma.point_count};
}

isp_lsc_params bind(const shading_inputs &lsc)
{
    return {{numbers_of(lsc.grids[0]), numbers_of(lsc.grids[1]), numbers_of(lsc.grids[2]), numbers_of(lsc.grids[3])},
            lsc.width,
            lsc.height,
            lsc.enable,
            {}};
}

// The library's view of a frame's inputs; valid while the inputs live.
struct bound_frame {
    explicit bound_frame(const frame_inputs &inputs, const frame_parts &parts = {})
        : gamma(inputs.gamma ? bind(*inputs.gamma) : isp_gamma_params{}),
          lsc(inputs.lsc ? bind(*inputs.lsc) : isp_lsc_params{}), params(inputs.controls)
    {
        params.frame = address_of(inputs.frame);
        params.exposure = address_of(inputs.exposure);
        params.scene = address_of(inputs.scene);
        params.gamma = inputs.gamma && parts.gamma ? &gamma : nullptr;
        if (!parts.gamma)
            params.brightness = params.contrast = 0; // which act on tables without curves as well
        params.colour = address_of(inputs.colour);
        params.lsc = inputs.lsc && parts.shading ? &lsc : nullptr;
        params.aux_size = address_of(inputs.aux_size);
        params.selection_list = inputs.selection_list ? inputs.selection_list->data() : nullptr;
    }
    bound_frame(const bound_frame &) = delete;
    bound_frame &operator=(const bound_frame &) = delete;

    isp_gamma_params gamma;
    isp_lsc_params lsc;
    isp_input_params params; // points to the members above
};

} // namespace

isp_session::isp_session(byte_buffer container, std::string tuning_name, const scene &setup, qz_mkn *makernote)
    : setup_(setup), makernote_(makernote), container_(std::move(container)), tuning_name_(std::move(tuning_name))
{
    open();
}

void isp_session::load(const byte_buffer &container)
{
    context_.reset(); // it points into the old one
    container_ = container;
    open_again();
}

void isp_session::open_again()
{
    if (makernote_ != nullptr)
        qz_mkn_clear(makernote_);
    written_ = 0;
    open();
}

void isp_session::open()
{
    const isp_blob blob = {container_.data(), static_cast<uint32_t>(container_.size())};
    bound_characterisation bound = {};
    if (setup_.cmc)
        bind(*setup_.cmc, bound);
    errno = 0;
    context_.reset(
        qz_isp_2_7_init(&blob, setup_.grid_width, setup_.grid_height, setup_.cmc ? &bound.cmc : nullptr, makernote_));
    expect_memory();
    if (!context_)
        fail({tuning_name_, "",
              fmt::format("the library did not accept it with a statistics grid of {} x {} cells", setup_.grid_width,
                          setup_.grid_height),
              ""});
}

// Where memory fails, some blocks get other values, and no status tells: only what failed does.
void isp_session::expect_memory() const
{
    if (errno == ENOMEM)
        fail({tuning_name_, "", "out of memory", ""});
}

record_snapshot isp_session::run(const frame_inputs &inputs)
{
    record_snapshot snapshot;
    run(inputs, {}, snapshot);
    return snapshot;
}

void isp_session::run(const frame_inputs &inputs, const frame_parts &parts, record_snapshot &snapshot)
{
    const bound_frame frame(inputs, parts);
    isp_output_desc output = {nullptr, 0};
    errno = 0;
    const uint32_t status = qz_isp_2_7_run(context_.get(), &frame.params, &output);
    expect_memory();
    if (status != ISP_SUCCESS || output.record == nullptr)
        fail({tuning_name_, "", fmt::format("the frame run failed with status {}", status), ""});
    const uint32_t held = parts.shading ? uint32_t{AIC_RECORD_SIZE} : uint32_t{AIC_FIXED_SIZE};
    written_ = std::max(written_, held);
    take_snapshot(*output.record, output.bytes_used, held, snapshot);
}

void isp_session::forget_frames()
{
    if (makernote_ != nullptr)
        return open_again(); // for the record of the start
    forget_records();
}

void isp_session::forget_records()
{
    std::memset(context_->aic_output, 0, written_);
    context_->frame_counter = 0;
    written_ = 0;
}

isp_tuning_set isp_session::selection(const frame_inputs &inputs) const
{
    const bound_frame frame(inputs);
    const isp_input_params &params = frame.params;
    isp_tuning_set selected;
    tuningselector(params.tuning_mode, context_.get(), &context_->rules,
                   params.frame != nullptr ? &params.frame->size : nullptr, params.aux_size, context_->set_count,
                   params.selection_list, &selected);
    return selected;
}

} // namespace qz::desk
