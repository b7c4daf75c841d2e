#include "tools/text/explain_text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tools/text/lines.h"

namespace qz::tool {

using namespace desk;

namespace {

std::string rule_text(size_t number, const evaluated_rule &rule)
{
    if (rule.kind.empty() || rule.op.empty())
        return fmt::format("{}: of unknown kind or comparison, ignored", number);
    const std::string area = rule.area ? fmt::format(" {}", *rule.area) : std::string(" missing");
    const std::string_view missing = rule.matches && !rule.has_set_index ? ", which the tuning does not have" : "";
    return fmt::format("{}: {} area{} {} {}: {} set index {}{}", number, rule.kind, area, rule.op, rule.threshold,
                       rule.matches && rule.has_set_index ? "takes" : "not", rule.set_index, missing);
}

std::string record_origin_text(const selected_record &record)
{
    std::string text = fmt::format("record {}, id {} version {}, set {} of set index {}", record.kind->name, record.id,
                                   record.version, record.set, record.set_index);
    if (record.rule)
        text += fmt::format(" (rule {})", *record.rule);
    if (record.offset)
        text += fmt::format(", offset {}", *record.offset);
    return text;
}

std::string rows_text(uint32_t gain, const row_origin &rows)
{
    const auto row = [](size_t number, int64_t key) { return fmt::format("row {} (gain {})", number, key); };
    if (rows.lower == rows.upper)
        return fmt::format("{} of {}, at gain {}", row(rows.lower, rows.lower_key), rows.count, gain);
    return fmt::format("{} x {:.4f} + {} x {:.4f} of {}, at gain {}", row(rows.lower, rows.lower_key),
                       1.0 - rows.weight, row(rows.upper, rows.upper_key), rows.weight, rows.count, gain);
}

} // namespace

std::string frame_origin_text(const frame_origin &frame)
{
    const std::array<uint8_t, 3> &order = frame.set_order;
    std::string text = labelled_line("tuning", fmt::format("{}: {} set {}", frame.tuning, frame.set_count,
                                                           frame.set_count == 1 ? "index" : "indices"));
    text += labelled_line("sets", fmt::format("tuning_mode {}: set {}, else set {}, else set {}", frame.tuning_mode,
                                              order[0], order[1], order[2]));
    if (frame.index_0_first)
        text += labelled_line("set index", "0 first, as there is a selection_list");
    size_t number = 0;
    for (const evaluated_rule &rule : frame.rules)
        text += labelled_line(number == 0 ? "rules" : "", rule_text(number, rule)), ++number;
    if (!frame.rules.empty() && frame.set_count < 2)
        text += labelled_line("", "none is followed: the tuning has one set index");
    text += labelled_line(
        "gain", fmt::format("{} (256 = 1.0){}{}", frame.gain, frame.gain_why.empty() ? "" : ": ", frame.gain_why));
    text += labelled_line("saturation", fmt::format("factor {:.6g}", frame.saturation));
    return text + "\n";
}

std::string block_origin_text(uint32_t gain, const block_origin &block)
{
    const std::string_view source = origin_name(block.source);
    const bool from_record = block.source == origin::tuning;
    std::string text;
    if (!from_record)
        text +=
            labelled_line("from", block.why.empty() ? std::string(source) : fmt::format("{}: {}", source, block.why));
    if (block.record)
        text += labelled_line(from_record ? "from" : "record", record_origin_text(*block.record));
    if (from_record && !block.why.empty())
        text += labelled_line("with", block.why);
    if (block.rows)
        text += labelled_line("rows", rows_text(gain, *block.rows));
    if (block.rows && !block.controls.empty())
        text += labelled_line("tuned", fmt::format("{}", fmt::join(block.rows->values, " ")));
    for (const control_origin &control : block.controls)
        text += labelled_line("control", fmt::format("{} {:.0f}: {:.6g}, {}", control.control, control.value,
                                                     control.amount, control.meaning));
    return text;
}

} // namespace qz::tool
