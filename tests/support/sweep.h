// What the sweeps over all registered members share: processes of their own, pictures
// whose rows have ends, and what a call has for a result.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/files/picture_size.h"
#include "platform/platform.h"
#include "tests/support/checks.h"

namespace host {

/// Does the work in a process of its own, in a host whose new pictures are in the
/// representation; false if anything was wrong there.
bool runApart(const std::string& what, const Representation& representation, uint32_t seconds,
              const std::function<void()>& work);

/// A picture with these words, and bytes that nobody writes behind each row.
Ref<Picture> pictureWithRowEnds(const Representation& representation, PictureSize size,
                                const std::vector<uint32_t>& words);

/// Checks that behind the rows of every living picture there is one value throughout.
/// What lies around the rows is fenced.
void expectRowEnds();

/// Calls the constructor of a registered class.
Ref<Object> newInstance(std::string_view className);

/// Those of every living memory block.
std::vector<std::vector<uint8_t>> bytesOfBlocks();

/// Checks at its end that the port and the device are current that were at its start.
class SamePort {
 public:
  SamePort() { GetGWorld(&port_, &device_); }
  SamePort(const SamePort&) = delete;
  SamePort& operator=(const SamePort&) = delete;
  ~SamePort();

 private:
  CGrafPtr port_ = nullptr;
  GDHandle device_ = nullptr;
};

/// What a call has for a result, in a few bytes, so that processes can share it.
struct Outcome {
  explicit Outcome(std::string_view kind, std::string_view bytes = {});
  void add(const Outcome& more);
  friend bool operator==(const Outcome&, const Outcome&) = default;

  char head[100] = {};  ///< kind and size
  size_t body;
};

/// The words as they lie in memory.
std::string_view bytesOf(const std::vector<uint32_t>& words);

/// New counters that did not count are as good as none.
Outcome outcomeOf(const Value& value);

}  // namespace host
