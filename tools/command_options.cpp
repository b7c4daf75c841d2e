#include "tools/command_options.h"

#include <iterator>
#include <memory>

#include "desk/check/codes.h"
#include "tools/base/log.h"
#include "tools/commands/commands.h"

namespace qz::tool {

namespace {

void add_inputs(CLI::App &command, input_files &inputs)
{
    command.add_option("--tuning", inputs.tuning, "Tuning container, or its JSON source; else the sample")
        ->type_name("FILE");
    command.add_option("--scene", inputs.scene, "JSON file of frame inputs; else the sample")->type_name("FILE");
}

void add_frame(CLI::App &command, std::optional<std::string> &frame,
               const std::string &description = "Frame to show: its number from 0, its name, or all")
{
    command.add_option("--frame", frame, description)->type_name("FRAME");
}

void add_settings(CLI::App &command, std::vector<std::string> &settings)
{
    command
        .add_option("--set", settings, "Value for an input of the frame shown, by the names of sweep; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

// Options live as long as the program; "chosen" runs the command once all of the line is read.
template <typename Options>
void on_choice(CLI::App &command, chosen_command &chosen, const std::shared_ptr<Options> &options,
               int (*run)(const Options &))
{
    CLI::Option *quiet = command.add_flag_callback(
        "-q,--quiet", [] { show_log(log_shown::nothing); }, "Show nothing of the library's log");
    command
        .add_flag_callback(
            "-v,--verbose", [] { show_log(log_shown::everything); },
            "Show all of the library's log, its version too; else its errors")
        ->excludes(quiet);
    command.callback([&chosen, options, run] { chosen = [options, run] { return run(*options); }; });
}

void add_run(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<run_options>();
    CLI::App *command = app.add_subcommand("run", "Compute the frames of a scene and print the record of the last one");
    add_inputs(*command, options->inputs);
    add_frame(*command, options->frame);
    add_settings(*command, options->settings);
    CLI::Option *as_json = command->add_flag("--json", options->as_json, "Print everything as JSON");
    command->add_option("--raw", options->raw, "Write the record's bytes in use instead of printing")
        ->type_name("FILE")
        ->excludes(as_json);
    CLI::Option *makernote =
        command
            ->add_option("--makernote", options->makernote,
                         "Write the makernote of all frames up to the last one instead of printing")
            ->type_name("FILE")
            ->excludes("--json")
            ->excludes("--raw");
    command->add_flag("--all", options->all, "Print every value of every table")
        ->excludes("--json")
        ->excludes("--raw")
        ->excludes(makernote);
    command
        ->add_flag("--explain", options->explain,
                   "Show where each block's values came from: record, set, rows, strengths, or why defaults")
        ->excludes("--raw")
        ->excludes(makernote);
    command->footer("FILE may be - for standard input or output.\n\n"
                    "Example: why the first frame of a scene of your own has its values\n"
                    "  qz-isp run --tuning sensor.vuxb --scene night.json --frame 0 --explain");
    on_choice(*command, chosen, options, run);
}

void add_get(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<get_options>();
    CLI::App *command = app.add_subcommand("get", "Print values of a frame's record by their names");
    command->add_option("FIELDS", options->fields, "Names of values as sweep has them, with commas between")
        ->required();
    add_inputs(*command, options->inputs);
    add_frame(*command, options->frame, "Frame to take, by number or name; else the last");
    add_settings(*command, options->settings);
    command->footer("One value is printed alone; of several, each has its name before it.\n\n"
                    "Example: the noise reduction at a gain of 8\n"
                    "  qz-isp get noise_reduction.param0 --set gain=8");
    on_choice(*command, chosen, options, get);
}

void add_report(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<report_options>();
    CLI::App *command = app.add_subcommand("report", "Write a page that shows a frame's record and tuning as charts");
    command->add_option("OUT", options->page, "HTML file to write, or -")->required();
    add_inputs(*command, options->inputs);
    add_frame(*command, options->frame);
    add_settings(*command, options->settings);
    command->add_option("--against", options->against, "Another tuning, whose frames are the reference for changes")
        ->type_name("FILE");
    command->add_flag("--static", options->is_static, "Leave out what makes the page live: a smaller page of pictures");
    command->add_flag("--open", options->open, "Show the page in the browser that BROWSER names, else with xdg-open");
    command->footer("Example: all frames of a scene, to choose from in the page\n"
                    "  qz-isp report night.html --tuning sensor.vuxb --scene night.json --frame all");
    on_choice(*command, chosen, options, report);
}

void add_sweep(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<sweep_options>();
    CLI::App *command = app.add_subcommand("sweep", "Compute a frame over ranges of its inputs, one row a frame");
    command
        ->add_option(
            "--over", options->choice.over,
            "NAME=FIRST..LAST:STEP, NAME=FIRST..LAST*FACTOR or NAME=VALUE,VALUE; the last one given runs fastest")
        ->type_name("RANGE")
        ->allow_extra_args(false);
    command
        ->add_option("--fields", options->choice.fields,
                     "Values to print: BLOCK.FIELD, BLOCK.FIELD[INDEX], BLOCK.*, makernote.RECORD.*, " +
                         desk::whole_column_names() +
                         ", and where a block came from: BLOCK.record, .set, .index, .rows, .weight")
        ->type_name("FIELD,...");
    add_inputs(*command, options->inputs);
    add_frame(*command, options->choice.frame, "Frame to start from, by number or name, or all; else the last");
    add_settings(*command, options->choice.settings);
    command->add_option("--format", options->format, "csv, or jsonl for JSON lines")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"csv", "jsonl"}));
    command->add_flag("--no-header", options->no_header, "Leave out the line of names");
    command->add_option("--shard", options->choice.shard, "Compute the rows of part I of N only")->type_name("I/N");
    command->add_option("--jobs", options->jobs, "Processors to use; else all")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    command->add_option("--output", options->output, "Write here instead of standard output")->type_name("FILE");
    command->add_flag("--list", options->list,
                      "Print instead, one a line, the inputs, values of the tuning, fields and frames that there are");
    command
        ->add_option("--plot", options->plot,
                     "Write a page with charts of the values; rows besides only with --output or --format")
        ->type_name("PAGE")
        ->excludes("--list");
    command->footer(
        "FILE and PAGE may be - for standard input or output.\n\n"
        "Example: edge enhancement over gain and sharpness\n"
        "  qz-isp sweep --over gain=1..16:0.5 --over sharpness=-128..127:32 --fields 'block13.param0,block5.*'");
    on_choice(*command, chosen, options, sweep);
}

void add_sample(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<sample_options>();
    CLI::App *command = app.add_subcommand("sample", "Write the built-in scene or tuning, to start from");
    command->add_option("WHAT", options->what, "scene or tuning")
        ->required()
        ->check(CLI::IsMember({"scene", "tuning"}));
    command->add_option("OUT", options->file, "JSON file to write; else standard output");
    command->footer("Example: a scene of your own\n"
                    "  qz-isp sample scene night.json\n"
                    "  qz-isp run --scene night.json");
    on_choice(*command, chosen, options, write_sample);
}

void add_tuning_pack(CLI::App &group, chosen_command &chosen)
{
    const auto options = std::make_shared<tuning_pack_options>();
    CLI::App *command = group.add_subcommand("pack", "Write a container from its JSON source");
    command->add_option("SOURCE", options->source, "JSON source, or -")->required();
    command->add_option("OUT", options->container, "Container to write, or -")->required();
    command->add_flag("--force", options->force, "Write a container that the library refuses too");
    command->footer("Exit code 1 when the library refuses the container.\n\n"
                    "Example:\n  qz-isp tuning pack sensor.json sensor.vuxb");
    on_choice(*command, chosen, options, pack_tuning);
}

void add_tuning_show(CLI::App &group, chosen_command &chosen)
{
    const auto options = std::make_shared<tuning_show_options>();
    CLI::App *command = group.add_subcommand("show", "List a tuning's records and what is wrong with them");
    command->add_option("FILE", options->file, "Container, or its JSON source, or -")->required();
    command->add_option("RECORD", options->record,
                        "Record to show alone with its values: SLOT[SET/INDEX], SLOT where there is one, or an id");
    CLI::Option *as_json =
        command->add_flag("--json", options->as_json, "Print the JSON source that packs to the same bytes");
    command->add_flag("--values", options->values, "Print the values of every record")->excludes(as_json);
    command->footer("Exit code 1 when the library refuses the container.\n\n"
                    "Example: the rows of a record of set 0 of set index 2\n"
                    "  qz-isp tuning show sensor.vuxb 'xnr[0/2]'");
    on_choice(*command, chosen, options, show_tuning);
}

void add_tuning_check(CLI::App &group, chosen_command &chosen)
{
    const auto options = std::make_shared<tuning_check_options>();
    CLI::App *command = group.add_subcommand("check", "Find what is wrong, odd or without effect in a tuning");
    command->add_option("FILE", options->file, "Container, or its JSON source, or -")->required();
    const auto severities =
        CLI::IsMember(std::vector<std::string>(std::begin(desk::severity_names), std::end(desk::severity_names)));
    command->add_option("--fail-on", options->fail_on, "Exit code 1 for findings of this severity or worse; else error")
        ->type_name("SEVERITY")
        ->check(severities);
    command->add_option("--severity", options->severity, "Show findings of this severity or worse; else all")
        ->type_name("SEVERITY")
        ->check(severities);
    CLI::Option *as_json = command->add_flag("--json", options->as_json, "Print everything as JSON");
    command->add_flag("--all", options->all, "Print all findings of a code that has many")->excludes(as_json);
    command->footer("Severities are note, warning and error.\n\n"
                    "Example: the gate of a tuning that has to be without warnings\n"
                    "  qz-isp tuning check --severity warning --fail-on warning sensor.vuxb");
    on_choice(*command, chosen, options, check_tuning);
}

void add_tuning(CLI::App &app, chosen_command &chosen)
{
    CLI::App *group = app.add_subcommand("tuning", "Tuning containers and their JSON source");
    group->require_subcommand(1);
    group->footer("Example: change a value of a container\n"
                  "  qz-isp tuning show --json sensor.vuxb > sensor.json\n"
                  "  qz-isp tuning pack sensor.json sensor.vuxb");
    add_tuning_pack(*group, chosen);
    add_tuning_show(*group, chosen);
    add_tuning_check(*group, chosen);
}

// A group with one command, "show", for dumps of one kind.
template <typename Options>
void add_dump(CLI::App &app, chosen_command &chosen, const std::string &name, const std::string &what,
              int (*show)(const Options &), const std::string &example)
{
    CLI::App *group = app.add_subcommand(name, "Dumps of " + what);
    group->require_subcommand(1);
    group->footer(example);
    const auto options = std::make_shared<Options>();
    CLI::App *command = group->add_subcommand("show", "Print a dump of " + what);
    command->add_option("FILE", options->file, "The dump, or -")->required();
    CLI::Option *as_json = command->add_flag("--json", options->as_json, "Print everything as JSON");
    command->add_flag("--all", options->all, "Print every value of every table")->excludes(as_json);
    command->footer(example);
    on_choice(*command, chosen, options, show);
}

void add_diff(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<diff_options>();
    CLI::App *command = app.add_subcommand("diff", "Compare two record dumps, makernotes, tunings or scenes");
    command->add_option("A", options->a, "Dump of records, makernote, container or its JSON source, or scene; or -")
        ->required();
    command->add_option("B", options->b, "One of the same kind, or -; else A, with what --set changes");
    CLI::Option *as_json = command->add_flag("--json", options->as_json, "Print every difference as JSON");
    command->add_flag("--all", options->all, "Print every difference of long lists")->excludes(as_json);
    command
        ->add_option("--set", options->settings,
                     "Value for B by the names of sweep: a tuning's, or an input of all frames; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command->footer("Exit codes: 0 equal, 1 different or a file is wrong, 2 wrong use of the command line.\n\n"
                    "Example: what a new container has otherwise than its source\n"
                    "  qz-isp diff sensor.json sensor.vuxb");
    on_choice(*command, chosen, options, diff);
}

void add_compare(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<compare_options>();
    CLI::App *command = app.add_subcommand("compare", "Compare the records that two tunings give for a scene");
    command->add_option("OLD", options->old_tuning, "Container, or its JSON source, or -; else the sample");
    command->add_option("NEW", options->new_tuning, "The same; else OLD, with what --change changes");
    command->add_option("--scene", options->scene, "JSON file of frame inputs; else the sample")->type_name("FILE");
    add_frame(*command, options->choice.frame, "Frame to compare: its number from 0, its name; else all");
    command
        ->add_option("--set", options->choice.settings,
                     "Value on both sides for an input or in the tunings, by the names of sweep; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command->add_option("--change", options->choice.changes, "The same, on the new side only")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command
        ->add_option("--over", options->choice.over,
                     "Compare one frame, else the last, over a range as of sweep; may be repeated")
        ->type_name("RANGE")
        ->allow_extra_args(false);
    command->add_option("--jobs", options->jobs, "Processors to use over ranges; else all")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    CLI::Option *as_json = command->add_flag("--json", options->as_json, "Print everything as JSON");
    command->add_flag("--all", options->all, "Print every value of long lists")->excludes(as_json);
    command->footer("Exit codes: 0 the same, 1 different or a file is wrong, 2 wrong use of the command line.\n\n"
                    "Example: what a new tuning changes, over all gains and in a scene\n"
                    "  qz-isp compare old.vuxb new.json --scene night.json\n"
                    "  qz-isp compare old.vuxb new.json --over gain=1..16*1.1 --over tuning_mode=0..2");
    on_choice(*command, chosen, options, compare);
}

} // namespace

void add_commands(CLI::App &app, chosen_command &chosen)
{
    add_run(app, chosen);
    add_get(app, chosen);
    add_report(app, chosen);
    add_sweep(app, chosen);
    add_tuning(app, chosen);
    add_sample(app, chosen);
    add_dump(app, chosen, "record", "hardware records, their bytes in use or whole", show_record,
             "Example: the records of all frames of the sample\n"
             "  qz-isp run --frame all --raw - | qz-isp record show -");
    add_dump(app, chosen, "makernote", "a makernote, as the makernote library saves it", show_makernote,
             "Example: what the frames of the sample leave in the makernote\n"
             "  qz-isp run --makernote - | qz-isp makernote show -");
    add_compare(app, chosen);
    add_diff(app, chosen);
}

} // namespace qz::tool
