// Appends to the caller's makernote, or to none.
#pragma once

#include <cstdint>

#include "qz_mkn.h"

namespace qz {

class makernote {
  public:
    explicit makernote(qz_mkn *handle) : handle_(handle) {}

    qz_mkn *handle() const { return handle_; }
    bool present() const { return handle_ != nullptr; }

    void add(qz_mkn_format format, uint32_t name, const void *data, uint32_t count) const
    {
        if (handle_ != nullptr)
            qz_mkn_add_record(handle_, format, name, data, count, nullptr);
    }

  private:
    qz_mkn *handle_;
};

} // namespace qz
