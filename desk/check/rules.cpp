#include "desk/check/rules.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/check/slots.h"
#include "desk/tuning/source_names.h"
#include "tuning/record_view.h"
#include "tuning/selection_rule.h"

namespace qz::desk {

namespace {

// Comparing every rule with all before it, at the areas around every threshold, is cubic.
constexpr size_t most_compared = 512;

constexpr uint16_t frame_kind = 1;
constexpr uint16_t equal_op = 1;
constexpr int32_t most_pixels = std::numeric_limits<int32_t>::max(); // areas above wrap

// A frame has pixels; the second geometry may be empty.
int32_t least_area(uint16_t kind)
{
    return kind == frame_kind ? 1 : 0;
}

// Whether some width and height of 16 bits have the area.
bool is_product(int32_t area)
{
    const auto shortest = (static_cast<uint32_t>(area) + UINT16_MAX - 1) / UINT16_MAX;
    if (area == 0)
        return true;
    for (auto side = static_cast<uint32_t>(std::sqrt(area)); side >= shortest && side > 0; --side)
        if (static_cast<uint32_t>(area) % side == 0)
            return true;
    return false;
}

// The areas around a threshold, and the ends: between them no rule of the threshold changes.
void add_areas(uint16_t kind, double threshold, std::vector<int32_t> &areas)
{
    const double at = std::floor(threshold);
    for (const double area : {at - 1, at, at + 1})
        if (area >= least_area(kind) && area <= most_pixels)
            areas.push_back(static_cast<int32_t>(area));
}

std::vector<int32_t> ends_of(uint16_t kind)
{
    return {least_area(kind), most_pixels};
}

std::string op_text(uint16_t op)
{
    return op >= 1 && op <= std::size(rule_ops) ? std::string(rule_ops[op - 1u]) : fmt::format("op {}", op);
}

std::string rule_text(const isp_selection_rule &rule)
{
    const bool is_known = rule.kind >= 1 && rule.kind <= std::size(rule_kinds);
    return fmt::format("{} {} {}",
                       is_known ? std::string(rule_kinds[rule.kind - 1u]) : fmt::format("kind {}", rule.kind),
                       op_text(rule.op), rule.threshold);
}

finding_place place_of_rules(const checked_rules &rules)
{
    return {.name = "rules", .id = rules_id, .offset = rules.offset};
}

void report_unused(const checked_container &container, size_t index, std::string what, const reporter &report)
{
    report.add("index-unused",
               {.name = fmt::format("set index {}", index),
                .set_index = static_cast<unsigned>(index),
                .offset = container.set_indices[index].offset},
               std::move(what));
}

class rule_checker {
  public:
    rule_checker(const checked_container &container, const reporter &report) : container_(container), report_(report)
    {
        const checked_rules &rules = *container.rules;
        rules_.reserve(rules.count());
        for (size_t i = 0; i < rules.count(); ++i)
            rules_.push_back(value_at<isp_selection_rule>(rules.bytes.data(), rules_start + i * rule_size));
        take_slots();
    }

    void check()
    {
        std::vector<bool> named(container_.set_indices.size());
        for (size_t i = 0; i < rules_.size(); ++i)
            if (check_rule(i) && rules_[i].set_index < named.size())
                named[rules_[i].set_index] = true;
        if (rules_.size() <= most_compared)
            check_hidden();
        else
            report_.add("rules-not-compared", place_of_rules(*container_.rules),
                        fmt::format("found {} rules, expected at most {}", rules_.size(), most_compared));
        for (size_t index = 1; index < named.size(); ++index)
            if (!named[index] && container_.set_indices[index].holds_records)
                report_unused(container_, index, "found no rule that holds and names it", report_);
    }

  private:
    finding_place place_of_rule(size_t i) const
    {
        finding_place place = place_of_rules(*container_.rules);
        place.name += fmt::format("[{}]", i);
        place.row = i;
        place.byte = container_.rules->offset + rules_start + i * rule_size;
        return place;
    }

    // The slots that blocks read, of each set index.
    void take_slots()
    {
        slots_.resize(container_.set_indices.size());
        const slot_set read = read_slots();
        for (const checked_record &record : container_.records)
            slots_[record.set_index] |= bit_of(slot_of(record.kind->slot)) & read;
    }

    slot_set slots_at(uint16_t set_index) const { return set_index < slots_.size() ? slots_[set_index] : 0; }

    // Whether it holds for a frame.
    bool check_rule(size_t i)
    {
        const isp_selection_rule &rule = rules_[i];
        const std::string never = why_never(rule);
        if (!never.empty())
            report_.add("rule-never-holds", place_of_rule(i), never);
        if (slots_at(rule.set_index) == 0)
            report_.add("rule-index-missing", place_of_rule(i),
                        fmt::format("found set index {}, which {}", rule.set_index,
                                    rule.set_index < slots_.size() ? "has no record that a block reads"
                                                                   : "the container does not have"));
        else if (rule.set_index == 0)
            report_.add("rule-index-0", place_of_rule(i), "found set index 0");
        if (never.empty() && holds_always(rule))
            report_.add("rule-always-holds", place_of_rule(i), fmt::format("found {}", rule_text(rule)));
        return never.empty();
    }

    // Products are looked for as long as rules are few.
    bool can_hold(const isp_selection_rule &rule, int32_t area) const
    {
        return matches(rule, area) && (rule.op != equal_op || rules_.size() > most_compared || is_product(area));
    }

    // Empty for a rule that holds for some frame.
    std::string why_never(const isp_selection_rule &rule) const
    {
        if (rule.kind < 1 || rule.kind > std::size(rule_kinds))
            return fmt::format("found kind {}, expected 1 (frame) or 2 (aux_size)", rule.kind);
        if (rule.op < 1 || rule.op > std::size(rule_ops))
            return fmt::format("found op {}, expected 1 to {}", rule.op, std::size(rule_ops));
        std::vector<int32_t> areas = ends_of(rule.kind);
        add_areas(rule.kind, rule.threshold, areas);
        if (std::ranges::any_of(areas, [&](int32_t area) { return can_hold(rule, area); }))
            return "";
        return fmt::format("found {}, expected what an area of {} to {} pixels can fulfil", rule_text(rule),
                           least_area(rule.kind), most_pixels);
    }

    static bool holds_always(const isp_selection_rule &rule)
    {
        std::vector<int32_t> areas = ends_of(rule.kind);
        add_areas(rule.kind, rule.threshold, areas);
        return std::ranges::all_of(areas, [&](int32_t area) { return matches(rule, area); });
    }

    // Slots that a rule's set index has and that earlier rules have always filled. Every frame has a size, so that
    // rules for it can hide those for the second geometry, but not the other way round: a frame may lack that.
    void check_hidden()
    {
        const std::vector<slot_set> filled_before = filled_in_every_frame();
        for (uint16_t kind = 1; kind <= std::size(rule_kinds); ++kind)
            check_hidden(kind, kind == frame_kind ? std::vector<slot_set>(rules_.size()) : filled_before);
    }

    std::vector<int32_t> areas_of(uint16_t kind) const
    {
        std::vector<int32_t> areas = ends_of(kind);
        for (const isp_selection_rule &rule : rules_)
            if (rule.kind == kind)
                add_areas(kind, rule.threshold, areas);
        std::ranges::sort(areas);
        areas.erase(std::unique(areas.begin(), areas.end()), areas.end());
        return areas;
    }

    // For each rule the slots that the rules for the frame before it have filled, whatever its area is.
    std::vector<slot_set> filled_in_every_frame() const
    {
        std::vector<slot_set> filled_before(rules_.size(), ~slot_set{0});
        for (const int32_t area : areas_of(frame_kind)) {
            slot_set filled = 0;
            for (size_t i = 0; i < rules_.size(); ++i) {
                filled_before[i] &= filled;
                if (rules_[i].kind == frame_kind && matches(rules_[i], area))
                    filled |= slots_at(rules_[i].set_index);
            }
        }
        return filled_before;
    }

    void check_hidden(uint16_t kind, const std::vector<slot_set> &filled_before)
    {
        std::vector<slot_set> taken(rules_.size());
        std::vector<bool> holds(rules_.size());
        const std::vector<int32_t> areas = areas_of(kind);
        for (const int32_t area : areas) {
            slot_set filled = 0;
            for (size_t i = 0; i < rules_.size(); ++i) {
                if (rules_[i].kind != kind || !can_hold(rules_[i], area))
                    continue;
                const slot_set slots = slots_at(rules_[i].set_index);
                holds[i] = true;
                taken[i] |= slots & ~filled & ~filled_before[i];
                filled |= slots;
            }
        }
        for (size_t i = 0; i < rules_.size(); ++i) {
            const slot_set slots = slots_at(rules_[i].set_index);
            if (holds[i] && (slots & ~taken[i]) != 0)
                report_hidden(i, slots & ~taken[i], slots, areas);
        }
    }

    // Whether a frame that the rule holds for may have taken records by the earlier one.
    bool meets(const isp_selection_rule &rule, const isp_selection_rule &earlier,
               const std::vector<int32_t> &areas) const
    {
        if (earlier.kind != rule.kind)
            return earlier.kind == frame_kind;
        return std::ranges::any_of(areas, [&](int32_t area) { return matches(rule, area) && matches(earlier, area); });
    }

    void report_hidden(size_t i, slot_set hidden, slot_set slots, const std::vector<int32_t> &areas)
    {
        const isp_selection_rule &rule = rules_[i];
        std::vector<std::string> before;
        for (size_t m = 0; m < i; ++m) {
            const isp_selection_rule &earlier = rules_[m];
            if ((slots_at(earlier.set_index) & hidden) != 0 && meets(rule, earlier, areas))
                before.push_back(fmt::format("rules[{}] ({})", m, rule_text(earlier)));
        }
        std::vector<std::string_view> names;
        for (unsigned slot = 0; slot < static_cast<unsigned>(tuning_slot::none); ++slot)
            if ((hidden & bit_of(static_cast<tuning_slot>(slot))) != 0)
                names.push_back(slot_name(static_cast<tuning_slot>(slot)));
        report_.add("rule-hidden", place_of_rule(i),
                    fmt::format("found {} for set index {}: {} ({}) from {} first", rule_text(rule), rule.set_index,
                                hidden == slots ? "frames take all its records" : "frames take some of its records",
                                fmt::join(names, ", "), fmt::join(before, " and ")));
    }

    const checked_container &container_;
    const reporter &report_;
    std::vector<isp_selection_rule> rules_;
    std::vector<slot_set> slots_; // by set index
};

} // namespace

void check_rules(const checked_container &container, const reporter &report)
{
    const bool has_indices = container.set_indices.size() >= 2;
    if (container.rules && has_indices && container.rules->count() > 0) {
        rule_checker(container, report).check();
        return;
    }
    if (container.rules && container.rules->count() > 0)
        report.add("rules-unused", place_of_rules(*container.rules),
                   fmt::format("found {} rules and no set index but 0", container.rules->count()));
    for (size_t index = 1; index < container.set_indices.size(); ++index)
        if (container.set_indices[index].holds_records)
            report_unused(container, index, "found no rule at all", report);
}

} // namespace qz::desk
