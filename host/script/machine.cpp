// The machine as a whole, and its messages about names.
#include "host/script/machine.h"

#include <exception>
#include <new>
#include <utility>

#include "host/core/exception.h"
#include "host/script/builtins.h"
#include "host/script/conversion.h"
#include "host/script/innate.h"
#include "host/script/script.h"
#include "host/script/stack.h"
#include "host/script/suggest.h"

namespace host {
namespace {

void appendNames(std::vector<std::string>& names, const std::vector<Member>& members) {
  for (const Member& member : members) names.push_back(member.declaration.name);
}

}  // namespace

Machine::Machine(Registry& registry, std::ostream& output)
    : registry_(registry), output_(output), builtIns_(builtInFunctions(arguments_)) {}

void Machine::setVariable(std::string_view name, Value value) {
  variables_.setGlobal(name, std::move(value));
}

// ---- Running as a whole

Value Machine::run(const Program& program) {
  Value value;
  runGuarded(program.source, [&] {
    defineFunctions(program);
    const Variables::Scope scope(variables_);
    const Flow flow = executeAll(program.body);
    if (flow.kind != Flow::Kind::Next || program.value == nullptr) return;
    value = evaluate(*program.value, Result::Ignored);
  });
  return value;
}

/// Turns whatever ends the work early into a ScriptError at its place.
void Machine::runGuarded(const SourceText& source, const std::function<void()>& work) {
  functions_.clear();
  source_ = &source;
  callSite_ = 0;
  try {
    work();
  } catch (const QuitRequest&) {
    return;
  } catch (const ScriptError&) {
    throw;
  } catch (const RaisedException& raised) {
    pollInterrupt(callSite_);  // It may have been the reason.
    failUncaught(raised.instance.get());
  } catch (const std::bad_alloc&) {
    fail(callSite_, "out of memory");
  } catch (const std::exception& error) {
    fail(callSite_, error.what());
  }
}

void Machine::fail(size_t position, const std::string& message) const {
  source_->fail(position, message);
}

void Machine::failUncaught(const Object* exception) const {
  const auto* described = dynamic_cast<const ExceptionObject*>(exception);
  std::string message = "uncaught " + (exception ? exception->className() : "exception");
  if (described != nullptr && !described->message.empty()) message += ": " + described->message;
  fail(callSite_, message);
}

void Machine::raiseAt(size_t position, const char* className, std::string message) {
  callSite_ = position;
  raise(className, std::move(message));
}

void Machine::pollInterrupt(size_t position) const {
  if (interruptFlag_ != nullptr && *interruptFlag_ != 0) fail(position, "interrupted");
}

/// The caller restores depth_.
void Machine::enterLevel(size_t position) {
  if (++depth_ <= maximumDepth && !isStackLow()) return;
  raiseAt(position, "StackOverflowException", "the calls of functions nest too deeply");
}

void Machine::raiseOutOfMemory() {
  raise("OutOfMemoryException", "there is not enough memory for this");
}

// ---- Names

void Machine::requireType(const Type& type, size_t position) {
  if (type.kind != Type::Kind::Object || registry_.findClass(type.className)) return;
  const bool isGeneral = sameName(type.className, "Object") || sameName(type.className, "Variant");
  if (!isGeneral && !isExceptionName(type.className)) {
    failUnknownClass(type.className, position, false);
  }
}

void Machine::failUnknownClass(const std::string& name, size_t position, bool isNew) {
  std::vector<std::string> names;
  if (!isNew) names = {"Integer", "Double", "Boolean", "Color", "String", "Object", "Variant"};
  for (const Class& type : registry_.classes()) names.push_back(type.name);
  fail(position, "unknown class '" + name + "'" + suggestion(name, names));
}

void Machine::failUnknownName(const std::string& name, size_t position) {
  std::vector<std::string> names = variables_.names();
  for (const auto* members : {&functions_, &registry_.globals(), &builtIns_}) {
    appendNames(names, *members);
  }
  for (const Class& type : registry_.classes()) names.push_back(type.name);
  const std::string nearest = suggestion(name, names);
  fail(position, "unknown name '" + name + "'" +
                     (nearest.empty() ? "; variables are declared with Dim" : nearest));
}

void Machine::failUnknownMember(const Owner& owner, const std::string& name,
                                size_t position) const {
  std::vector<std::string> names = innateNames(owner.object);
  if (owner.members) appendNames(names, *owner.members);
  fail(position, owner.name + " has no member '" + name + "'" + suggestion(name, names));
}

}  // namespace host
