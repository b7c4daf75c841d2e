#include "desk/report/gain_curves.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "qz_isp/gain.h"

namespace qz::desk {

namespace {

constexpr double highest_gain = 65535;
// Samples on a logarithmic scale, between which a curve is straight enough to the eye.
constexpr int scale_samples = 40;
constexpr size_t max_keys_sampled = 200;

// A record's rows in the form that the library's interpolation takes.
class gain_table {
  public:
    explicit gain_table(const selected_record &record)
    {
        const record_rows rows = rows_of(record);
        rows_ = static_cast<int32_t>(rows.count);
        for (size_t row = 0; row < rows.count; ++row) {
            keys_.push_back(rows.key(row));
            const std::vector<int32_t> values = row_values(record, row);
            words_.insert(words_.end(), values.begin(), values.end());
        }
        columns_ = rows_ != 0 ? static_cast<int32_t>(words_.size()) / rows_ - 1 : 0;
    }

    const std::vector<int64_t> &keys() const { return keys_; }

    std::vector<int32_t> at(uint16_t gain) const
    {
        std::vector<uint32_t> words(static_cast<size_t>(columns_));
        compute_generic_params(gain, words_.data(), columns_, rows_, words.data());
        return {words.begin(), words.end()};
    }

    // Gains to sample at: the keys and what lies between them.
    std::set<uint16_t> gains() const
    {
        std::set<uint16_t> gains;
        const auto [low, high] = std::ranges::minmax(keys_);
        const double first = std::clamp(static_cast<double>(low), 1.0, highest_gain);
        const double last = std::clamp(static_cast<double>(high), 1.0, highest_gain);
        for (int i = 0; i <= scale_samples; ++i)
            gains.insert(static_cast<uint16_t>(first * std::pow(last / first, double{1} * i / scale_samples)));
        const size_t step = keys_.size() / max_keys_sampled + 1;
        for (size_t row = 0; row < keys_.size(); row += step) {
            if (keys_[row] >= 1 && keys_[row] <= int64_t{UINT16_MAX})
                gains.insert(static_cast<uint16_t>(keys_[row]));
        }
        return gains;
    }

  private:
    std::vector<int64_t> keys_;
    std::vector<int32_t> words_;
    int32_t rows_ = 0;
    int32_t columns_ = 0;
};

// Lists of one column each.
json curves_json(const selected_record &record)
{
    const gain_table table(record);
    const std::set<uint16_t> gains = table.gains();
    std::vector<std::vector<int32_t>> columns;
    for (const uint16_t gain : gains) {
        const std::vector<int32_t> values = table.at(gain);
        columns.resize(values.size());
        for (size_t column = 0; column < values.size(); ++column)
            columns[column].push_back(values[column]);
    }
    return {{"keys", table.keys()}, {"gains", gains}, {"columns", columns}};
}

} // namespace

json gain_curves::of_frame(const frame_origin &frame)
{
    json records = json::array();
    for (const block_origin &block : frame.blocks) {
        if (block.record && block.rows)
            records.push_back({{"slot", block.record->kind->slot},
                               {"curves", number_of(*block.record)},
                               {"at_gain", block.rows->values}});
    }
    return records;
}

size_t gain_curves::number_of(const selected_record &record)
{
    const auto [known, is_new] = known_.try_emplace(record.copy, curves_.size());
    if (is_new) {
        json curves = {{"kind", record.kind->name},
                       {"id", record.id},
                       {"set", record.set},
                       {"set_index", record.set_index},
                       {"version", record.version}};
        curves.update(curves_json(record));
        curves_.push_back(std::move(curves));
    }
    return known->second;
}

} // namespace qz::desk
