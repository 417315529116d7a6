// Images and bundles to be damaged.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace host {

using Bytes = std::vector<uint8_t>;

/// The bytes of one of the small images in tests/bundle.
Bytes smallImage(const std::string& name = "small");

/// The bundle of an image.
Bytes bundleOf(const Bytes& image);

/// What is thrown while `work` runs; empty if it runs through.
std::string faultOf(const std::function<void()>& work);

/// A record in a file's bytes, at any offset.
template <typename Record>
Record recordAt(const Bytes& bytes, size_t offset) {
  Record record;
  memcpy(&record, &bytes.at(offset + sizeof record - 1) - (sizeof record - 1), sizeof record);
  return record;
}

template <typename Record>
void change(Bytes& bytes, size_t offset, const std::function<void(Record&)>& work) {
  auto record = recordAt<Record>(bytes, offset);
  work(record);
  memcpy(bytes.data() + offset, &record, sizeof record);
}

/// Where a text stands in the bytes, its zero at the end included.
size_t offsetOf(const Bytes& bytes, const std::string& text);

}  // namespace host
