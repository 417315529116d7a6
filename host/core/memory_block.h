// Memory blocks: plain bytes that scripts and the plug-in share.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/core/object.h"

namespace host {

class MemoryBlock final : public Object {
 public:
  explicit MemoryBlock(std::vector<uint8_t> contents)
      : Object("MemoryBlock"), bytes(std::move(contents)) {}
  [[nodiscard]] std::string describe() const override {
    return "MemoryBlock of " + std::to_string(bytes.size()) + " bytes";
  }

  std::vector<uint8_t> bytes;

 protected:
  ~MemoryBlock() override = default;
};

}  // namespace host
