#include "desk/compare/side.h"

#include <cstring>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/explain/explain.h"
#include "desk/run/settings.h"
#include "desk/scene/input_by_name.h"

namespace qz::desk {

namespace {

frame_choice choose(const scene &scene, const side_choice &choice)
{
    if (choice.over.empty())
        return choose_frames(scene, choice.frame.value_or("all"));
    const frame_choice chosen = choose_frames(scene, choice.frame);
    if (chosen.last - chosen.first != 1)
        fail({std::nullopt, "frame", fmt::format("{} frames", chosen.last - chosen.first), "one with --over"});
    return chosen;
}

} // namespace

compared_side::compared_side(std::string name, byte_buffer container, scene inputs, const side_choice &choice)
    : scene_(std::move(inputs)), container_(std::move(container)), makernote_(make_makernote())
{
    const frame_choice chosen = choose(scene_, choice);
    first_ = chosen.first;
    last_ = chosen.last;
    apply_settings(choice.settings, scene_, chosen, container_);
    apply_settings(choice.changes, scene_, chosen, container_, "change");
    if (!choice.over.empty()) {
        varied_frame_ = chosen.first;
        ranges_.emplace(choice.over, scene_.frames[varied_frame_], container_);
        expect_unvaried(choice.changes);
        first_ = 0;
        last_ = ranges_->rows();
    }
    session_.emplace(container_, std::move(name), scene_, makernote_.get());
}

// A change that the ranges take back would compare a tuning with itself.
void compared_side::expect_unvaried(const std::vector<std::string> &changes)
{
    frame_inputs &frame = scene_.frames[varied_frame_];
    for (const std::string &text : changes) {
        const value_option option = {"change", text};
        const named_value changed = find_value(option, option.name_and_value().first, frame, container_);
        for (const sweep_range &range : ranges_->ranges()) {
            const bool resets = range.varied.name == gain_name && changed.place == &frame.exposure->digital_gain;
            if (resets || range.varied.place == changed.place)
                option.fail(fmt::format("a value that --over {} sets", range.varied.name), "another one");
        }
    }
}

run_place compared_side::place(uint64_t number) const
{
    if (!ranges_)
        return {number, scene_.frames[static_cast<size_t>(number)].name, {}};
    ranges_->apply(number);
    run_place place = {number, "", {}};
    for (const sweep_range &range : ranges_->ranges()) {
        const std::string value = visit_type(range.varied.type, [&](auto typed) {
            std::memcpy(&typed, range.varied.place, sizeof typed);
            return fmt::format("{}", typed);
        });
        place.inputs.emplace_back(range.varied.name, value);
    }
    return place;
}

const frame_inputs &compared_side::prepare(uint64_t number)
{
    if (ranges_) {
        ranges_->apply(number);
        if (ranges_->vary_tuning())
            session_->load(container_);
        else
            session_->forget_records();
        return scene_.frames[varied_frame_];
    }
    if (number < next_) {
        session_->load(container_);
        next_ = 0;
    }
    while (next_ < number)
        static_cast<void>(session_->run(scene_.frames[static_cast<size_t>(next_++)]));
    return scene_.frames[static_cast<size_t>(next_++)];
}

const run_result &compared_side::run(uint64_t number)
{
    inputs_ = &prepare(number);
    qz_mkn_clear(makernote_.get());
    result_.record = session_->run(*inputs_);
    if (qz_mkn_dropped_count(makernote_.get()) != 0)
        fail({name(), "", "no memory for the makernote", ""});
    result_.makernote.resize(qz_mkn_saved_size(makernote_.get()));
    qz_mkn_save(makernote_.get(), result_.makernote.data());
    return result_;
}

frame_origin compared_side::explain() const
{
    return explainer(*session_).explain(*inputs_, result_.record);
}

} // namespace qz::desk
