#include "host/bench/level_probe.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "host/bench/cases.h"
#include "host/bench/instruction_trace.h"
#include "host/bench/members.h"

namespace host {
namespace {

/// Their kernels use what a level has to offer: the second one shuffles bytes.
constexpr std::array<std::string_view, 2> kProbes = {"InvertQRZ", "PicturetoBinaryStringQRZ"};

/// The registers of every level are filled a few times by each row.
constexpr PictureSize kProbedSize{64, 4};

constexpr std::string_view kNames[] = {"SSE2", "SSSE3", "AVX2", "AVX512"};

std::optional<InstructionSet> setUsedBy(const NamedMember& named, const Subject& subject) {
  const auto benchCase = std::ranges::find(benchCases(), named.name, &BenchCase::member);
  const BenchCall call = benchCase->make(subject);
  const auto run = [&] {
    std::vector<Value> arguments = call.arguments;
    static_cast<void>(named.member->call(call.self.get(), arguments));
  };
  run();  // so that nothing is looked up or loaded any more
  return highestInstructionSet(codeAround(named.member->function), run);
}

}  // namespace

std::string observedLevel() {
  const Subject subject = makeSubject(Content::Photo, kProbedSize);
  std::optional<InstructionSet> highest;
  for (const NamedMember& named : registeredMembers()) {
    if (std::ranges::count(kProbes, named.name) == 0) continue;
    highest = std::max(highest, setUsedBy(named, subject));
  }
  return std::string(highest ? kNames[static_cast<size_t>(*highest)] : "unknown");
}

}  // namespace host
