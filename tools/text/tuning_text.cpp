#include "tools/text/tuning_text.h"

#include <iterator>
#include <map>
#include <utility>

#include <fmt/format.h>

namespace qz::tool {

using namespace desk;

namespace {

// A slot of one set of one set index; the rule record has a slot of its own.
using slot_key = std::pair<unsigned, std::string>;

std::optional<slot_key> key_of(const tuning_record &record, unsigned set_index)
{
    if (record.id == rules_id)
        return slot_key(0, "rules");
    if (!record.place || record.place->kind == nullptr)
        return std::nullopt;
    return slot_key(set_index, fmt::format("{} {}", record.place->set, record.place->kind->slot));
}

class list_printer {
  public:
    std::string print(const tuning_container &container)
    {
        find_last(container.list, 0);
        line("offset", "id", "family", "set", "slot", "version", "rows", "size", "");
        print_list(container.list, 0, 0);
        return std::move(text_);
    }

  private:
    void find_last(const record_list &list, unsigned set_index)
    {
        for (const tuning_record &record : list.records) {
            if (const std::optional<slot_key> key = key_of(record, set_index))
                last_[*key] = record.offset;
            find_last(record.nested, record.id - unsigned{set_container_base});
        }
    }

    template <typename... Columns>
    void line(const Columns &...columns)
    {
        std::string made = fmt::format("{:>8}  {:>5}  {:>6}  {:>3}  {:<30}  {:>7}  {:>5}  {:>7}  {}", columns...);
        made.erase(made.find_last_not_of(' ') + 1);
        text_ += made + "\n";
    }

    std::string note(const tuning_record &record, unsigned set_index) const
    {
        if (record.is_set_container)
            return record.tagged ? "with a header of its own" : "";
        if (record.place && record.place->kind == nullptr)
            return "dropped";
        const std::optional<slot_key> key = key_of(record, set_index);
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
        for (const tuning_record &record : list.records) {
            print_record(record, set_index, depth);
            print_list(record.nested, record.id - unsigned{set_container_base}, depth + 1);
        }
        if (!list.trailing.empty())
            fmt::format_to(std::back_inserter(text_), "{:>8}  {}{} bytes that are no record\n", "",
                           std::string(size_t{2} * depth, ' '), list.trailing.size());
    }

    std::map<slot_key, size_t> last_;
    std::string text_;
};

} // namespace

std::string tuning_text(const tuning_container &container)
{
    return list_printer().print(container);
}

} // namespace qz::tool
