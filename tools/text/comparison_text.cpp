#include "tools/text/comparison_text.h"

#include <set>

#include <fmt/format.h>

#include "tools/text/explain_text.h"
#include "tools/text/lines.h"

namespace qz::tool {

using namespace desk;

namespace {

std::string plural(uint64_t count, std::string_view noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string value_text(const std::optional<int64_t> &value)
{
    return value ? std::to_string(*value) : "nothing";
}

class comparison_printer {
  public:
    comparison_printer(const comparison &made, bool all) : made_(made), all_(all) {}

    std::string print()
    {
        for (const differing_list &list : made_.lists) {
            told_.clear();
            for (const differing_value &value : list.values) {
                if (all_)
                    print_value(list, value, value);
            }
            if (!all_)
                print_value(list, list.with_first(), list.with_largest());
            print_origins(list);
        }
        return std::move(text_) + summary();
    }

  private:
    std::string runs(uint64_t count) const { return plural(count, made_.of_rows ? "row" : "frame"); }

    // One value, or what is first and largest of several.
    void print_value(const differing_list &list, const differing_value &first, const differing_value &largest)
    {
        const bool of_all = !all_ && list.values.size() > 1;
        text_ += list.list.name() + (of_all ? "" : list.list.index_text(first.index));
        if (of_all)
            text_ += fmt::format(", {} values", list.values.size());
        text_ += fmt::format(": in {} of {}\n", all_ ? first.runs : list.runs, runs(made_.runs));
        const bool same_one = first.index == largest.index && first.first.run == largest.largest.run;
        print_occurrence(same_one ? "first and largest" : "first", list, first.index, first.first, of_all);
        if (!same_one)
            print_occurrence("largest", list, largest.index, largest.largest, of_all);
    }

    void print_occurrence(std::string_view label, const differing_list &list, uint32_t index, const occurrence &where,
                          bool with_index)
    {
        told_.insert(where.run);
        const std::string which = with_index ? list.list.index_text(index) + " " : "";
        text_ += labelled_line(label, fmt::format("{}{} -> {}, {}", which, value_text(where.old_value),
                                                  value_text(where.new_value), place_text(made_.places.at(where.run))));
    }

    // Of the runs told of the list, each where the block was not explained before.
    void print_origins(const differing_list &list)
    {
        for (const uint64_t run : told_) {
            const pair_origin *origin = made_.origin_of(list, {run, {}, {}});
            if (origin == nullptr || !explained_.insert({run, list.list.block()}).second)
                continue;
            const std::string old_text = origin_text(origin->old_side);
            const std::string new_text = origin_text(origin->new_side);
            const std::string where = place_text(made_.places.at(run));
            if (old_text == new_text) {
                text_ += labelled_line("old and new", where) + old_text;
            } else {
                text_ += labelled_line("old", where) + old_text;
                text_ += labelled_line("new", where) + new_text;
            }
        }
    }

    static std::string origin_text(const side_origin &side) { return block_origin_text(side.gain, side.block); }

    std::string summary() const
    {
        if (made_.is_same())
            return fmt::format("the same in {}{}\n", runs(made_.runs),
                               made_.same_tunings ? "" : ", though the tunings differ");
        uint64_t of_record = 0;
        uint64_t of_makernote = 0;
        for (const differing_list &list : made_.lists)
            (list.list.is_makernote() ? of_makernote : of_record) += list.values.size();
        return fmt::format("{} of the record and {} of the makernote differ in {} of {}\n", plural(of_record, "value"),
                           of_makernote, made_.differing_runs, runs(made_.runs));
    }

    const comparison &made_;
    bool all_;
    std::string text_;
    std::set<uint64_t> told_; // runs, of one list
    std::set<std::pair<uint64_t, const block_layout *>> explained_;
};

} // namespace

std::string place_text(const run_place &place)
{
    if (place.inputs.empty())
        return fmt::format("frame {}{}", place.number, place.name.empty() ? "" : fmt::format(" ({})", place.name));
    std::string inputs;
    for (const auto &[name, value] : place.inputs)
        inputs += fmt::format("{}{} {}", inputs.empty() ? "" : ", ", name, value);
    return fmt::format("row {} ({})", place.number, inputs);
}

std::string comparison_text(const comparison &made, bool all)
{
    return comparison_printer(made, all).print();
}

} // namespace qz::tool
