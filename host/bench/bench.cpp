#include "host/bench/bench.h"

#include <malloc.h>

#include <algorithm>
#include <climits>

#include "host/bench/level_probe.h"
#include "host/bench/members.h"
#include "host/core/runtime.h"
#include "platform/standin/standin.h"

namespace host {
namespace {

const Member* findMember(const std::vector<NamedMember>& members, std::string_view name) {
  const auto found = std::ranges::find(members, name, &NamedMember::name);
  return found != members.end() ? found->member : nullptr;
}

/// Whether the host keeps the pictures in the way that the case needs.
bool isPossible(const BenchCase& entry) {
  return entry.limit != BenchCase::Limit::GWorlds ||
         runtime().storageOfOpenedPictures() == Storage::GWorld;
}

PictureSize limited(const BenchCase& entry, PictureSize size) {
  if (entry.limit != BenchCase::Limit::Recording) return size;
  return {std::min(size.width, standin::kWidestRecording),
          std::min(size.height, standin::kTallestRecording)};
}

}  // namespace

std::vector<BenchStep> benchSteps(const std::vector<PictureSize>& sizes,
                                  const std::function<bool(const std::string& name)>& filter) {
  const auto members = registeredMembers();
  std::vector<BenchStep> steps;
  for (const PictureSize& size : sizes) {
    for (const BenchCase& entry : benchCases()) {
      const Member* member = findMember(members, entry.member);
      if (member == nullptr || !isPossible(entry) || !filter(entry.name())) continue;
      for (const Content content : entry.contents) {
        steps.push_back({&entry, member, size, content});
      }
    }
  }
  return steps;
}

Benchmark::Benchmark() : level_(observedLevel()) {
  // What is freed stays with the process, whatever its size: first touching fresh
  // pages would cost more than most members.
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
}

const Subject& Benchmark::subjectFor(Content content, PictureSize size) {
  std::erase_if(subjects_, [&](const Subject& kept) { return kept.size != size; });
  const auto found = std::ranges::find(subjects_, content, &Subject::content);
  if (found != subjects_.end()) return *found;
  subjects_.push_back(makeSubject(content, size));
  return subjects_.back();
}

BenchResult Benchmark::measureStep(const BenchStep& step) {
  const Subject& whole = subjectFor(step.content, step.size);
  const PictureSize size = limited(*step.benchCase, step.size);
  const auto result = [&](const Subject& subject) {
    return BenchResult{
        step.benchCase->name(), step.size, size,
        nameOf(step.content),   level_,    measure(*step.benchCase, *step.member, subject)};
  };
  if (size == step.size) return result(whole);
  return result({step.content, size, partOf(*whole.picture, 0, 0, size), nullptr});
}

}  // namespace host
