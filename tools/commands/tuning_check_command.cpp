#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "desk/check/check.h"
#include "desk/tuning/load.h"
#include "desk/tuning/verdict.h"
#include "qz_isp/error.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/log.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"
#include "tools/text/check_text.h"

namespace qz::tool {

namespace {

using desk::severity;

// Of a name that is one.
severity severity_of(std::string_view name)
{
    return static_cast<severity>(std::ranges::find(desk::severity_names, name) - std::begin(desk::severity_names));
}

// Checks a container and writes each finding as it comes. They are counted whether they are shown or not.
class checked_file {
  public:
    checked_file(const tuning_check_options &options, std::string name)
        : shown_(severity_of(options.severity)), name_(std::move(name)), text_(options.all)
    {}

    void write_lines(desk::byte_view container)
    {
        const uint32_t verdict = check(container, [&](const desk::finding &found) { out_.write(text_.add(found)); });
        out_.write(text_.left_out());
        out_.write(fmt::format("{}: {}; the library {}\n", name_, counts_.text(),
                               verdict == ISP_SUCCESS ? "accepts it" : "refuses it"));
        out_.finish();
    }

    void write_json(desk::byte_view container)
    {
        std::string before = "{\"findings\": [\n";
        const uint32_t verdict = check(container, [&](const desk::finding &found) {
            out_.write(before + desk::finding_json(found).dump());
            before = ",\n";
        });
        const desk::json summary = {{"errors", counts_.of(severity::error)},
                                    {"warnings", counts_.of(severity::warning)},
                                    {"notes", counts_.of(severity::note)}};
        const desk::json said = {{"status", verdict}, {"meaning", desk::verdict_text(verdict)}};
        out_.write(fmt::format("{}],\n\"verdict\": {},\n\"summary\": {}}}\n", before == ",\n" ? "\n" : before,
                               said.dump(), summary.dump()));
        out_.finish();
    }

    const finding_counts &counts() const { return counts_; }

  private:
    template <typename Write>
    uint32_t check(desk::byte_view container, const Write &write)
    {
        const quiet_log quiet; // what the library logs is among the findings
        return desk::check_tuning(container, [&](const desk::finding &found) {
            counts_.add(found.level);
            if (found.level >= shown_)
                write(found);
        });
    }

    severity shown_;
    std::string name_;
    output_file out_{"-"};
    check_text text_;
    finding_counts counts_;
};

} // namespace

int check_tuning(const tuning_check_options &options)
{
    const std::string name = input_name(options.file);
    const desk::byte_buffer container = desk::container_bytes(name, read_file(options.file));
    checked_file checked(options, name);
    if (options.as_json)
        checked.write_json(container);
    else
        checked.write_lines(container);
    return checked.counts().reach(severity_of(options.fail_on)) ? exit_failure : exit_success;
}

} // namespace qz::tool
