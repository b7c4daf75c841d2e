// Writes the seed corpus of every target, made from the program's sample tuning and scene: DIRECTORY/TARGET/NAME.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/makernote/file.h"
#include "desk/run/session.h"
#include "desk/scene/scene.h"
#include "desk/tuning/layout.h"
#include "desk/tuning/pack.h"
#include "desk/tuning/to_json.h"
#include "fuzz/frame_bytes.h"
#include "tools/sample/sample.h"

namespace {

namespace desk = qz::desk;
using desk::byte_buffer;
using desk::json;

class corpus {
  public:
    corpus(const std::filesystem::path &directory, const std::string &target) : directory_(directory / target)
    {
        std::filesystem::create_directories(directory_);
    }

    void add(const std::string &name, desk::byte_view bytes) const { add(name, desk::text_of(bytes)); }
    void add(const std::string &name, std::string_view text) const
    {
        std::ofstream(directory_ / name, std::ios::binary) << text;
    }

  private:
    std::filesystem::path directory_;
};

template <typename T>
void append(byte_buffer &bytes, const T &value)
{
    const auto *first = reinterpret_cast<const uint8_t *>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

void append(byte_buffer &bytes, const std::vector<float> &samples)
{
    for (const float sample : samples)
        append(bytes, sample);
}

// The sample tuning, each of its records in a container of its own, and set containers in one another.
std::vector<json> tuning_sources()
{
    const json whole = json::parse(qz::tool::sample_tuning);
    std::vector<json> sources = {whole};
    for (const json &record : whole.at("records"))
        sources.push_back({{"records", json::array({record})}});
    json nested = json::array({whole.at("records").at(0)});
    for (int depth = 0; depth < 40; ++depth)
        nested = json::array({{{"set_index", 1 + depth % 3}, {"tagged", depth % 2 == 0}, {"records", nested}},
                              {{"id", 1}, {"bytes", "00"}}});
    sources.push_back({{"records", nested}});
    return sources;
}

fuzz::frame_bytes frame_of(const desk::frame_inputs &inputs)
{
    fuzz::frame_bytes frame = {};
    frame.controls = inputs.controls;
    frame.size = inputs.frame.value_or(isp_frame_desc{});
    frame.exposure = inputs.exposure.value_or(isp_exposure{});
    frame.scene = inputs.scene.value_or(isp_scene_params{});
    frame.colour = inputs.colour.value_or(isp_colour_params{});
    frame.aux_size = inputs.aux_size.value_or(isp_geometry{});
    frame.flags = 0xffffffff; // whatever the scene leaves out is there, as zeros
    if (inputs.gamma)
        frame.gamma.point_count = inputs.gamma->point_count;
    if (inputs.lsc) {
        frame.lsc.width = inputs.lsc->width;
        frame.lsc.height = inputs.lsc->height;
        frame.lsc.enable = inputs.lsc->enable;
    }
    return frame;
}

// One curve's or grid's samples serve all channels.
byte_buffer samples_of(const desk::frame_inputs &inputs)
{
    byte_buffer samples;
    if (inputs.gamma && inputs.gamma->curves[0])
        append(samples, *inputs.gamma->curves[0]);
    if (inputs.lsc && inputs.lsc->grids[0])
        append(samples, *inputs.lsc->grids[0]);
    return samples;
}

// Some of the scene's frames, one after the other.
byte_buffer frames_on(desk::byte_view container, const desk::scene &scene, std::span<const desk::frame_inputs> frames)
{
    const byte_buffer samples = samples_of(frames[0]);
    fuzz::setup_bytes setup = {};
    setup.flags = 0xff;
    setup.frames = static_cast<uint8_t>(frames.size() - 1);
    setup.sample_bytes = static_cast<uint16_t>(samples.size());
    setup.entries = 2;
    setup.sensor = scene.cmc.value().sensor_description.value();
    byte_buffer bytes;
    append(bytes, setup);
    for (const desk::frame_inputs &frame : frames)
        append(bytes, frame_of(frame));
    bytes.insert(bytes.end(), samples.begin(), samples.end());
    bytes.insert(bytes.end(), container.begin(), container.end());
    return bytes;
}

void write_scenes(const corpus &to)
{
    const json whole = json::parse(qz::tool::sample_scene);
    json around = whole;
    around["frames"] = {json::object()};
    to.add("without-frames", around.dump());
    for (const json &frame : whole.at("frames"))
        for (const auto &[name, value] : frame.items())
            to.add(name + "-" + std::to_string(value.dump().size()), json{{"frames", {{{name, value}}}}}.dump());
}

// Every routine with sizes that most of them take, on the sample's gains.
void write_calls(const corpus &to, const std::vector<float> &gains)
{
    constexpr uint8_t routines = 16;
    constexpr uint16_t sizes[] = {8 * 17 + 1, 8 * 13 + 1, 8 * 9 + 1, 8 * 6 + 1, 8 * 2 + 1, 1, 1, 1};
    constexpr uint32_t wide_sizes[] = {17, 13, 33, 25, 512, 1024};
    for (uint8_t routine = 0; routine < routines; ++routine) {
        byte_buffer narrow = {routine, 0};
        byte_buffer wide = narrow;
        append(narrow, sizes);
        append(wide, wide_sizes);
        append(narrow, gains);
        append(wide, gains);
        to.add(std::to_string(routine), narrow);
        to.add(std::to_string(routine) + "-wide", wide);
    }
}

// The sample's records and makernote.
void write_dumps(const corpus &to, const desk::scene &scene)
{
    desk::isp_session session(desk::pack_container("sample", qz::tool::sample_tuning), "sample", scene);
    for (const desk::frame_inputs &frame : scene.frames) {
        const desk::record_snapshot snapshot = session.run(frame);
        byte_buffer record;
        append(record, snapshot.record);
        to.add("whole-" + frame.name, record);
        record.resize(snapshot.bytes_used);
        to.add("used-" + frame.name, record);
        record.resize(AIC_FIXED_SIZE);
        to.add("fixed-" + frame.name, record);
    }
    qz_mkn *makernote = qz_mkn_create();
    const uint16_t values[] = {1, 2, 3};
    qz_mkn_add_record(makernote, QZ_MKN_U16, 512, values, 3, nullptr);
    qz_mkn_add_record(makernote, QZ_MKN_TEXT, 538, "text", 4, "key");
    to.add("makernote", desk::save_makernote(makernote));
    qz_mkn_destroy(makernote);
}

// What the lists of tuning records add to the dictionaries: a header for every id, with the size of a record of one row
// or of its values, and the names.
void write_dictionaries(const corpus &to)
{
    std::string headers;
    std::string names;
    for (const desk::record_kind &kind : desk::record_kinds()) {
        names += fmt::format("\"\\\"{}\\\"\"\n", kind.name);
        for (const uint16_t family : std::initializer_list<uint16_t>{320, 768, 1536})
            for (uint8_t set = 0; set < 3; ++set)
                if (const std::optional<uint16_t> id = desk::id_of(kind, family, set)) {
                    const isp_record header = {kind.start + (kind.fields.empty() ? 0 : kind.size), 100, 0, *id};
                    byte_buffer bytes;
                    append(bytes, header);
                    headers += fmt::format("\"\\x{:02x}\"\n", fmt::join(bytes, "\\x"));
                }
    }
    to.add("binary.dict", headers);
    to.add("json.dict", names);
}

void write_all(const std::filesystem::path &directory)
{
    write_dictionaries(corpus(directory, "dictionaries"));
    const desk::scene scene = desk::read_scene("sample", qz::tool::sample_scene);
    size_t number = 0;
    for (const json &source : tuning_sources()) {
        const std::string name = "tuning-" + std::to_string(number++);
        const byte_buffer container = desk::pack_container(name, source.dump());
        corpus(directory, "container").add(name, container);
        corpus(directory, "tool_tuning").add(name, container);
        corpus(directory, "tool_tuning").add(name + ".json", source.dump());
        const size_t frame = number % scene.frames.size();
        const corpus frames(directory, "frame");
        frames.add(name, frames_on(container, scene, std::span(scene.frames).subspan(frame, 1)));
        frames.add(name + "-all", frames_on(container, scene, std::span(scene.frames).first(fuzz::max_frames)));
    }
    write_scenes(corpus(directory, "tool_scene"));

    const std::vector<float> &gains = scene.frames.at(0).lsc.value().grids[0].value();
    write_calls(corpus(directory, "resample"), gains);
    write_calls(corpus(directory, "matrix"), gains);
    write_calls(corpus(directory, "statistics"), gains);
    write_calls(corpus(directory, "color"), gains);
    write_dumps(corpus(directory, "tool_dump"), scene);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: seeds DIRECTORY\n", stderr);
        return 2;
    }
    write_all(argv[1]);
    return 0;
}
