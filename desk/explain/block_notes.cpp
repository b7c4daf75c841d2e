#include "desk/explain/block_notes.h"

#include <fmt/format.h>

#include "color/effects.h"
#include "color/macc_entries.h"
#include "frame/frame_decisions.h"
#include "noise_detail/chroma_nr_units.h"
#include "tuning/record_view.h"

namespace qz::desk {

void note_replaced_matrix(const frame_facts &frame, block_origin &block)
{
    if (effect_matrix(frame.inputs.controls.effects) != nullptr)
        block.why = "effects, which replace colour.ccm";
}

// What the factor is made of beside the control.
void note_saturation(const frame_facts &frame, block_origin &block)
{
    const frame_inputs &inputs = frame.inputs;
    if (has_saturation(address_of(inputs.colour)))
        block.add(fmt::format("colour.saturation {}", inputs.colour->saturation));
    if (lessens_saturation(address_of(inputs.scene)))
        block.add(fmt::format("less scene.saturation_decrement {}", inputs.scene->saturation_decrement));
    if (is_vivid(inputs.controls.effects))
        block.add(fmt::format("times {} for effect vivid", vivid_factor));
}

// Which entry of a multi-axis record the sectors start from, and what they are multiplied by.
void note_base_set(const frame_facts &frame, block_origin &block)
{
    const std::span<const isp_macc_entry> entries = short_rows<isp_macc_entry>(frame.tuning.macc);
    const uint32_t mode = frame.origin.tuning_mode;
    const uint32_t target = frame.inputs.scene ? frame.inputs.scene->macc_target : 0;
    const std::string wanted =
        mode == 1 ? fmt::format("nearest to macc_target {}", target) : "of key 0, as tuning_mode is not 1";
    if (const isp_macc_entry *base = base_entry(entries, mode, target))
        block.add(fmt::format("entry {} of {} (key {}), the base set {}", base - entries.data(), entries.size(),
                              base->key, wanted));
    else
        block.add(fmt::format("identity, as none of {} entries is a base set {}", entries.size(), wanted));

    for (size_t effect = 0; effect < macc_effects; ++effect) {
        if (!has_macc_effect(frame.inputs.controls.effects, effect))
            continue;
        const isp_macc_entry *tuned = effect_entry(entries, effect);
        const std::string table =
            tuned != nullptr ? fmt::format("entry {}", tuned - entries.data()) : "its fixed table";
        block.add(fmt::format("times {} for effect macc_{}", table, effect + 1));
    }
}

void note_missing_value(const frame_facts & /*frame*/, block_origin &block)
{
    block.add(fmt::format("which count as 0 in version {}", ISP_REC_13_WITHOUT_SECOND));
}

// What follows the rows in the record's newer versions.
void note_fringe_tail(const frame_facts &frame, block_origin &block)
{
    const isp_fringe_control_slot &slot = frame.tuning.fringe_control;
    block.add(fmt::format("exponent: {} and the shift", static_cast<uint8_t>(slot.count2)));
    if (slot.extra == nullptr)
        block.add("field_0_to_3 as the frame before left them, for want of a second table");
}

void note_field_units(const frame_facts &frame, block_origin &block)
{
    if (has_8_bit_fields(frame.tuning.chroma_nr))
        block.add(fmt::format("field[0..1] times {}", chroma_nr_unit));
}

void note_gamma_effects(const frame_facts &frame, block_origin &block)
{
    const uint32_t effects = frame.inputs.controls.effects;
    if (mirrors_gamma(effects))
        block.add("mirrored by effects");
    if (makes_two_levels(effects))
        block.add("in two levels by effects");
}

void note_shading(const frame_facts &frame, block_origin &block)
{
    if (frame.record.record.lens_shading.payload.enable == 0)
        block.why = fmt::format("refused: a size or a scaling term of frame or lsc is 0 or missing, or a table would "
                                "have more than {} entries",
                                AIC_LENS_SHADING_MAX_ENTRIES);
    else if (has_black_levels(address_of(frame.inputs.colour), frame.sensor))
        block.add("the black levels as factors");
}

} // namespace qz::desk
