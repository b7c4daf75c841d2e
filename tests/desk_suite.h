// What the suites of the desk library share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desk/base/error.h"
#include "desk/run/session.h"
#include "desk/tuning/pack.h"
#include "tools/sample/sample.h"

inline bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

// What messages say of the error that an action fails with.
template <typename Action>
std::string error_of(Action action)
{
    try {
        action();
    } catch (const qz::desk::error &wrong) {
        return error_text(wrong);
    }
    return "no error";
}

inline qz::desk::byte_buffer bytes_of(std::string_view text)
{
    return {text.begin(), text.end()};
}

// The records of the sample's frames, one context for all.
inline std::vector<qz::desk::record_snapshot> sample_records(qz_mkn *makernote = nullptr)
{
    const qz::desk::scene scene = qz::desk::read_scene("sample", qz::tool::sample_scene);
    qz::desk::isp_session session(qz::desk::pack_container("sample", qz::tool::sample_tuning), "sample", scene,
                                  makernote);
    std::vector<qz::desk::record_snapshot> records;
    for (const qz::desk::frame_inputs &frame : scene.frames)
        records.push_back(session.run(frame));
    return records;
}
