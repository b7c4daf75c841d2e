#include <nlohmann/json.hpp>
#include <set>

#include "desk/compare/comparison.h"
#include "desk/explain/origin_json.h"
#include "desk/json/text.h"

namespace qz::desk {

namespace {

json number_or_null(const std::optional<int64_t> &number)
{
    return number ? json(*number) : json(nullptr);
}

class comparison_writer {
  public:
    explicit comparison_writer(const comparison &made) : made_(made) {}

    json write() const
    {
        json lists = json::array();
        for (const differing_list &list : made_.lists)
            lists.push_back(list_json(list));
        return {{"equal", made_.is_same()},       {"same_tunings", made_.same_tunings},
                {"old", made_.old_name},          {"new", made_.new_name},
                {runs_name(), made_.runs},        {"different", made_.differing_runs},
                {"differences", std::move(lists)}};
    }

  private:
    const char *runs_name() const { return made_.of_rows ? "rows" : "frames"; }

    json place_json(uint64_t run) const
    {
        const run_place &place = made_.places.at(run);
        if (!made_.of_rows)
            return {{"frame", place.number}, {"name", place.name}};
        json inputs = json::object();
        for (const auto &[name, value] : place.inputs)
            inputs[name] = json::parse(value);
        return {{"row", place.number}, {"inputs", std::move(inputs)}};
    }

    json occurrence_json(const occurrence &where) const
    {
        json result = place_json(where.run);
        result["old"] = number_or_null(where.old_value);
        result["new"] = number_or_null(where.new_value);
        return result;
    }

    json list_json(const differing_list &list) const
    {
        json values = json::array();
        std::set<uint64_t> told;
        for (const differing_value &value : list.values) {
            values.push_back({{"index", list.list.index_text(value.index)},
                              {runs_name(), value.runs},
                              {"first", occurrence_json(value.first)},
                              {"largest", occurrence_json(value.largest)}});
            told.insert({value.first.run, value.largest.run});
        }
        json result = {{"list", list.list.name()}, {runs_name(), list.runs}, {"values", std::move(values)}};
        if (list.list.block() != nullptr)
            result["origins"] = origins_json(list, told);
        return result;
    }

    json origins_json(const differing_list &list, const std::set<uint64_t> &told) const
    {
        json origins = json::array();
        for (const uint64_t run : told) {
            const pair_origin &both = *made_.origin_of(list, {run, {}, {}});
            json &origin = origins.emplace_back(place_json(run));
            origin["old"] = side_json(both.old_side);
            origin["new"] = side_json(both.new_side);
        }
        return origins;
    }

    static json side_json(const side_origin &side)
    {
        json result = {{"gain", side.gain}};
        result.update(block_origin_json(side.block));
        return result;
    }

    const comparison &made_;
};

} // namespace

std::string comparison_json(const comparison &made)
{
    return json_text(comparison_writer(made).write());
}

} // namespace qz::desk
