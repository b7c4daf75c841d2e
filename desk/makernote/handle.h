// A makernote that is destroyed with its owner.
#pragma once

#include <memory>

#include "desk/base/error.h"
#include "qz_mkn.h"

namespace qz::desk {

struct makernote_deleter {
    void operator()(qz_mkn *makernote) const { qz_mkn_destroy(makernote); }
};
using makernote_handle = std::unique_ptr<qz_mkn, makernote_deleter>;

inline makernote_handle make_makernote()
{
    makernote_handle made(qz_mkn_create());
    if (!made)
        fail({"makernote", "", "out of memory", ""});
    return made;
}

} // namespace qz::desk
