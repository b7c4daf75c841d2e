#include "tools/text/tuning_text.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include <fmt/format.h>

namespace qz::tool {

using namespace desk;

namespace {

// Written at a time.
constexpr size_t enough = 65536;

// A number for each slot of one set of one set index; the rule record has a slot of its own.
std::optional<uint32_t> key_of(const tuning_record &record, unsigned set_index)
{
    if (record.id == rules_id)
        return 0;
    if (!record.place || record.place->kind == nullptr)
        return std::nullopt;
    const auto same_slot = [&](const record_kind &kind) { return kind.slot == record.place->kind->slot; };
    const auto slot = std::ranges::find_if(record_kinds(), same_slot) - record_kinds().begin();
    return (set_index << 16 | uint32_t{record.place->set} << 8 | static_cast<uint32_t>(slot)) + 1;
}

class list_printer {
  public:
    explicit list_printer(const text_sink &sink) : sink_(sink) {}

    void print(const tuning_container &container)
    {
        find_last(container.list, 0);
        line("offset", "id", "family", "set", "slot", "version", "rows", "size", "");
        print_list(container.list, 0, 0);
        sink_(text_);
    }

  private:
    void find_last(const record_list &list, unsigned set_index)
    {
        for (const tuning_record &record : list) {
            if (const std::optional<uint32_t> key = key_of(record, set_index))
                last_[*key] = record.offset;
            find_last(record.nested, record.id - unsigned{set_container_base});
        }
    }

    template <typename... Columns>
    void line(const Columns &...columns)
    {
        fmt::format_to(std::back_inserter(text_), "{:>8}  {:>5}  {:>6}  {:>3}  {:<30}  {:>7}  {:>5}  {:>7}  {}",
                       columns...);
        text_.erase(text_.find_last_not_of(' ') + 1);
        text_ += '\n';
        if (text_.size() >= enough) {
            sink_(text_);
            text_.clear();
        }
    }

    std::string note(const tuning_record &record, unsigned set_index) const
    {
        if (record.is_set_container)
            return record.tagged ? "with a header of its own" : "";
        if (record.place && record.place->kind == nullptr)
            return "dropped";
        const std::optional<uint32_t> key = key_of(record, set_index);
        if (!key)
            return "skipped";
        const size_t last = last_.at(*key);
        return last == record.offset ? "" : fmt::format("replaced by the one at {}", last);
    }

    void print_record(const tuning_record &record, unsigned set_index, unsigned depth)
    {
        const bool known = record.place && record.place->kind != nullptr;
        std::string slot = known ? std::string(record.place->kind->name) : "-";
        if (record.is_set_container)
            slot = fmt::format("set index {}", record.id - set_container_base);
        else if (record.id == rules_id)
            slot = "rules";
        const std::optional<int64_t> rows = stated_rows(record);
        line(record.offset, record.id, record.place ? std::to_string(record.place->family) : "-",
             record.place ? std::to_string(record.place->set) : "-", std::string(size_t{2} * depth, ' ') + slot,
             record.version, rows ? std::to_string(*rows) : "-", record.size(), note(record, set_index));
    }

    void print_list(const record_list &list, unsigned set_index, unsigned depth)
    {
        for (const tuning_record &record : list) {
            print_record(record, set_index, depth);
            print_list(record.nested, record.id - unsigned{set_container_base}, depth + 1);
        }
        if (const byte_view trailing = list.trailing(); !trailing.empty())
            fmt::format_to(std::back_inserter(text_), "{:>8}  {}{} bytes that are no record\n", "",
                           std::string(size_t{2} * depth, ' '), trailing.size());
    }

    const text_sink &sink_;
    std::unordered_map<uint32_t, size_t> last_;
    std::string text_; // not written yet
};

} // namespace

void write_tuning_text(const tuning_container &container, const text_sink &sink)
{
    list_printer(sink).print(container);
}

} // namespace qz::tool
