// What the library says of a container.
#pragma once

#include <cstdint>
#include <string_view>

#include "desk/base/bytes.h"
#include "qz_isp/context.h"

namespace qz::desk {

// A container that the library has parsed, which logs what it limits. The bytes must outlive it.
class parsed_container {
  public:
    explicit parsed_container(byte_view bytes);
    ~parsed_container();
    parsed_container(const parsed_container &) = delete;
    parsed_container &operator=(const parsed_container &) = delete;

    uint32_t status() const { return status_; } // an isp_status
    const isp_context &context() const { return context_; }

  private:
    isp_context context_ = {};
    uint32_t status_;
};

// The status alone.
uint32_t library_verdict(byte_view container);

// "accepted", "a malformed record, or one that no container may have".
std::string_view verdict_text(uint32_t verdict);

} // namespace qz::desk
