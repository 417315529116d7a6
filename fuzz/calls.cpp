// Any calls of any members, one after the other, on pictures of all representations, and
// on what earlier calls gave, in a host where any call can fail.
//
// Whatever happens, references, locks and the current port are as they ought to be after
// every call, and nothing has changed but what the member changes. A call in which nothing
// failed is made once more on the same, at another CPU level, and gives the same.

#include <algorithm>
#include <array>

#include "fuzz/support/failing_host.h"
#include "fuzz/support/inventory.h"
#include "fuzz/support/ledger.h"
#include "host/core/exception.h"
#include "host/core/instance.h"
#include "host/core/memory_block.h"
#include "host/core/runtime.h"
#include "plugin/classes/filter_instance.h"

namespace fuzz {
namespace {

using host::Object;
using host::Picture;
using host::Ref;
using host::Value;
using Values = std::vector<Value>;

/// A registered member, with its class unless it is a global method.
struct Member {
  const host::Class* owner;
  const host::Member* member;
  [[nodiscard]] const std::string& name() const { return member->declaration.name; }
};
std::vector<Member> members;
qrz::CpuLevel highestLevel;

/// The object, the arguments, and for a setter the assigned value.
struct Call {
  const Member* member;
  bool assigns;
  Values values;

  [[nodiscard]] Object* self() const { return host::objectOf(values.front()); }
  [[nodiscard]] bool is(std::string_view name) const { return member->name() == name; }
  [[nodiscard]] Values arguments() const {
    const auto first = values.begin() + 1;
    return {first, first + std::ssize(member->member->declaration.parameters)};
  }
  /// Whether it changes what the object holds.
  [[nodiscard]] bool mayChange(Object& object) const;
};

/// Of pictures that share a GWorld each shows what is done to the other.
bool isSame(Object* changed, Object& object) {
  return changed != nullptr && bytesOf(*changed).data() == bytesOf(object).data();
}

bool Call::mayChange(Object& object) const {
  if (is("CountColorsQRZ")) return dynamic_cast<host::MemoryBlock*>(&object) != nullptr;
  if (assigns) return is("EmbeddedMaskQRZ") && isSame(self(), object);
  if (!member->name().starts_with("Scroll") || self() == nullptr) return false;
  auto* picture = dynamic_cast<Picture*>(self());
  return isSame(picture, object) || (picture != nullptr && isSame(picture->mask.get(), object));
}

/// What a call gives: the result, the arguments behind it, and the picture that an
/// instance made; or an exception.
struct Outcome {
  Values values;
  std::string raised;
};

Outcome outcomeOf(const Call& call, bool canFail) {
  Outcome outcome;
  const host::Member& member = *call.member->member;
  Values arguments = call.arguments();
  try {
    const PluginCall inPlugin(canFail);
    if (call.assigns) {
      member.assign(call.self(), arguments, call.values.back());
    } else {
      outcome.values.push_back(member.call(call.self(), arguments));
    }
  } catch (const host::RaisedException& exception) {
    const auto& object = dynamic_cast<const host::ExceptionObject&>(*exception.instance);
    outcome.raised = object.className() + object.message;
  }
  std::ranges::move(arguments, std::back_inserter(outcome.values));
  if (auto* instance = dynamic_cast<host::Instance*>(call.self())) {
    constexpr int32_t kMade = offsetof(qrz::FilterInstance, DestinationPicture);
    outcome.values.push_back(objectValue(Ref<Object>::share(instance->field<Object*>(kMade))));
  }
  return outcome;
}

/// The input as a program.
class Program {
 public:
  explicit Program(std::span<const uint8_t> bytes) : in_(bytes), has_(in_) {}
  void run();

 private:
  void step();
  FaultPlan newPlan();
  void call();
  void perform(const Call& call);
  void repeat(const Call& call, const Outcome& outcome, const Snapshot& before,
              const Latches& latches, const Pace& pace);
  Pace nextPace();

  ByteSource in_;
  Inventory has_;
  uint32_t pace_ = 0;  ///< counts up, so that calls take turns at all levels
};

FaultPlan Program::newPlan() {
  const uint8_t kind = in_.byte();
  const uint8_t value = in_.byte();
  if (kind % 5 < 2) return {.first = value % 64U + 1, .forGood = kind % 5 == 1};
  if (kind % 5 == 2) return {.rate = kind, .seed = value};
  return {.lacking = kind % 5 == 3 ? value % 32U + 1 : 0};
}

/// A wide outline goes over all pixels for every column.
void limit(Call& call) {
  if (!call.is("RenderSamplesQRZ")) return;
  auto* arguments = call.values.data() + 1;
  const int32_t most = std::get<int32_t>(arguments[5]) > 1 ? 32 : 300;
  for (Value* size : {&arguments[3], &arguments[4]}) {
    auto& length = std::get<int32_t>(*size);
    const bool isDefault = length < 1 && most != 32;
    if (!isDefault && (length < 1 || length > most)) length = std::abs(length % most) + 1;
  }
}

void Program::call() {
  const Member& member = in_.oneOf(members);
  const host::Declaration& declaration = member.member->declaration;
  Call call{&member, member.member->assign && in_.byte() % 2 != 0, {has_.self(member.owner)}};
  for (const host::Parameter& parameter : declaration.parameters) {
    call.values.push_back(has_.argument(parameter));
  }
  if (call.assigns)
    call.values.push_back(has_.argument({"", member.member->assignedType, false, {}}));
  limit(call);
  perform(call);
}

/// What the platform draws into.
std::pair<CGrafPtr, GDHandle> currentPort() {
  std::pair<CGrafPtr, GDHandle> current;
  GetGWorld(&current.first, &current.second);
  return current;
}

Pace Program::nextPace() {
  const uint32_t number = pace_++;
  return {std::min(static_cast<qrz::CpuLevel>(number % 4), highestLevel), number / 4 % 2 != 0};
}

void Program::perform(const Call& call) {
  const Snapshot before;
  const Latches latches;
  const auto port = currentPort();
  const Pace pace = nextPace();
  pace.set();
  const Outcome outcome = outcomeOf(call, true);
  const bool hasFailed = PluginCall::hasFailed();
  checkOwners(call.member->name(), {has_.slots(), call.values, outcome.values}, has_.hasForeign());
  for (Object* changed : before.changed()) {
    if (!call.mayChange(*changed)) fail(call.member->name() + " changed " + changed->describe());
  }
  if (currentPort() != port) fail(call.member->name() + " changed the port");
  if (!hasFailed) repeat(call, outcome, before, latches, pace);
  for (const Value& value : outcome.values) has_.keep(value);
}

void Program::repeat(const Call& call, const Outcome& outcome, const Snapshot& before,
                     const Latches& latches, const Pace& pace) {
  const Snapshot after;
  before.restore();
  latches.restore();
  const bool isLowest = pace.level == qrz::CpuLevel::SSE2;
  Pace{isLowest ? highestLevel : qrz::CpuLevel::SSE2, !pace.isStreamed}.set();
  const Outcome repeated = outcomeOf(call, false);
  checkOwners(call.member->name(), {has_.slots(), call.values, outcome.values, repeated.values},
              has_.hasForeign());
  if (outcome.raised != repeated.raised || !after.changed().empty() ||
      !std::ranges::equal(outcome.values, repeated.values, isEqual)) {
    fail(call.member->name() + " gave something else at another level");
  }
}

void Program::step() {
  switch (in_.byte() % 16) {
    case 0:
    case 1:
      return has_.keep(has_.newPicture());
    case 2:
      return has_.keep(has_.newBlock());
    case 3:
      return has_.keep(has_.newText());
    case 4:
      return has_.giveMask();
    case 5:
      return arm(newPlan());
    case 6:
      return has_.dropOne();
    default:
      return call();
  }
}

void Program::run() {
  resetPlugin();
  host::runtime().settings.newPictures =
      in_.oneOf(std::array{host::Storage::GWorld, host::Storage::Context, host::Storage::Bitmap});
  pace_ = in_.byte();
  constexpr int32_t kMostSteps = 40;
  constexpr int64_t kMostPixelsInAll = 200'000;
  for (int32_t i = 0; i < kMostSteps && !in_.isEmpty() && has_.pixels() < kMostPixelsInAll; ++i)
    step();
}

void addMembers(const host::Class* owner, const std::vector<host::Member>& all) {
  for (const host::Member& member : all) {
    if (member.isRegistered) members.push_back({owner, &member});
  }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  fuzz::startFailingHost();
  fuzz::highestLevel = qrz::cpuLevel;
  host::Registry& registry = host::runtime().registry;
  for (const host::Class& entry : registry.classes()) fuzz::addMembers(&entry, entry.members);
  fuzz::addMembers(nullptr, registry.globals());
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  fuzz::Program({bytes, size}).run();
  fuzz::checkOwners("the end", {}, false);
  return 0;
}
