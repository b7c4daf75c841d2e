// The commands of the program. Each takes its options from the command line and gives the exit code.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "inputs.h"

namespace qz::tool {

constexpr int exit_success = 0;
constexpr int exit_failure = 1; // a file or its contents are wrong
constexpr int exit_usage = 2;
constexpr int exit_closed_pipe = 141; // what a shell reports of a program that SIGPIPE ended

struct run_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::optional<std::string> raw;
    std::optional<std::string> makernote;
    bool as_json = false;
    bool all = false;
    bool explain = false;
};
int run(const run_options &options);

struct report_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::string page;
};
int report(const report_options &options);

struct sweep_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::vector<std::string> over;
    std::optional<std::string> fields;
    std::string format = "csv"; // or "jsonl"
    bool no_header = false;
    std::optional<std::string> shard;
    std::string output = "-";
};
int sweep(const sweep_options &options);

struct pack_options {
    std::string source;
    std::string container;
};
int pack_tuning(const pack_options &options);

struct show_options {
    std::string file;
    bool as_json = false;
};
int show_tuning(const show_options &options);

// Of a dump of records, or of a saved makernote.
struct dump_options {
    std::string file;
    bool as_json = false;
    bool all = false;
};
int show_record(const dump_options &options);
int show_makernote(const dump_options &options);

struct diff_options {
    std::string a;
    std::string b;
    bool as_json = false;
    bool all = false;
};
int diff(const diff_options &options);

} // namespace qz::tool
