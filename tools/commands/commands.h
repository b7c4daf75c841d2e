// The commands of qz-isp and what their options choose; each runs in a file of its own and gives the exit code.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desk/compare/side.h"
#include "desk/sweep/plan.h"
#include "tools/base/inputs.h"

namespace qz::tool {

// run: the records of a scene's frames.
struct run_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::vector<std::string> settings;
    std::optional<std::string> raw;
    std::optional<std::string> makernote;
    bool as_json = false;
    bool all = false;
    bool explain = false;
};
int run(const run_options &options);

// get: values of one frame's record by their names.
struct get_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::vector<std::string> settings;
    std::string fields;
};
int get(const get_options &options);

// report: a page of charts.
struct report_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::vector<std::string> settings;
    std::string page;
    std::optional<std::string> against; // another tuning, to tell the differences
    bool is_static = false;             // without the module
    bool open = false;
};
int report(const report_options &options);

// sweep: a frame over ranges of its inputs, one row a frame.
struct sweep_options {
    input_files inputs;
    desk::sweep_choice choice;
    std::optional<std::string> format; // csv, which it else is, or jsonl
    bool no_header = false;
    std::optional<std::string> output; // else standard output
    std::optional<std::string> plot;   // a page; the table besides only where format or output say so
    std::optional<uint32_t> jobs;      // threads; else as many as there are processors
    bool list = false;                 // print the names there are instead
};
int sweep(const sweep_options &options);

// sample: the scene and the tuning that are built into the program, to start from.
struct sample_options {
    std::string what; // scene or tuning
    std::string file = "-";
};
int write_sample(const sample_options &options);

// tuning pack: a container from its JSON source.
struct tuning_pack_options {
    std::string source;
    std::string container;
    bool force = false; // also one that the library refuses
};
int pack_tuning(const tuning_pack_options &options);

// tuning show: the records of a container or their values, and what is wrong with them.
struct tuning_show_options {
    std::string file;
    std::optional<std::string> record; // by name: this one's values
    bool as_json = false;
    bool values = false;
};
int show_tuning(const tuning_show_options &options);

// tuning check: what is wrong, odd or without effect in a tuning.
struct tuning_check_options {
    std::string file;
    bool as_json = false;
    bool all = false;
    std::string severity = "note"; // the least that is shown
    std::string fail_on = "error"; // the least that exit code 1 tells of
};
int check_tuning(const tuning_check_options &options);

// record show: the records of a dump.
struct record_show_options {
    std::string file;
    bool as_json = false;
    bool all = false;
};
int show_record(const record_show_options &options);

// makernote show: a saved makernote.
struct makernote_show_options {
    std::string file;
    bool as_json = false;
    bool all = false;
};
int show_makernote(const makernote_show_options &options);

// compare: what differs between the records that two tunings give.
struct compare_options {
    std::optional<std::string> old_tuning; // else the sample
    std::optional<std::string> new_tuning; // else the old one, with the changes
    std::optional<std::string> scene;
    desk::side_choice choice;
    std::optional<uint32_t> jobs; // threads; else as many as there are processors
    bool as_json = false;
    bool all = false;
};
int compare(const compare_options &options);

// diff: where two record dumps, makernotes, tunings or scenes differ.
struct diff_options {
    std::string a;
    std::optional<std::string> b;      // else A
    std::vector<std::string> settings; // of B
    bool as_json = false;
    bool all = false;
};
int diff(const diff_options &options);

} // namespace qz::tool
