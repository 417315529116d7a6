#include "host/core/plugin_classes.h"

#include <optional>

#include "host/core/instance.h"
#include "host/core/native_call.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"

namespace host {
namespace {

/// The last parameter of a setter has the type that the function returns.
Type assignedTypeOf(const Declaration& declaration) { return declaration.result.value_or(Type{}); }

/// Members of classes and extensions get their object first, global methods do
/// not.
enum class Scope { Object, Global };

std::optional<Member> memberOf(const qrz::MethodRecord& record, Scope scope) {
  Member member;
  try {
    member.declaration = parseDeclaration(record.declaration);
  } catch (const DeclarationError& error) {
    runtime().reportMisuse(std::string("a declaration that cannot be read: ") + error.what());
    return std::nullopt;
  }
  if (!fitsIntoCall(member.declaration)) {
    runtime().reportMisuse("a declaration of too many parameters: " + member.declaration.text);
    return std::nullopt;
  }
  member.isRegistered = true;
  member.flags = record.flags;
  member.function = reinterpret_cast<const void*>(record.function);
  member.assignedType = assignedTypeOf(member.declaration);
  const auto selfOf = [scope](Object* self) {
    return scope == Scope::Object ? Self(self) : std::nullopt;
  };
  member.call = [&record, selfOf, declaration = member.declaration](Object* self,
                                                                    std::span<Value> arguments) {
    return callFunction(record.function, declaration, selfOf(self), arguments);
  };
  if (record.setter == nullptr) return member;
  member.assign = [&record, selfOf, declaration = member.declaration, type = member.assignedType](
                      Object* self, std::span<Value> arguments, const Value& value) {
    callSetter(record.setter, declaration, selfOf(self), arguments, value, type);
  };
  return member;
}

bool isFieldAccess(qrz::HostFunction function) { return function == QRZ_HOST_FIELD_ACCESS; }

Value readField(Instance& instance, const Type& type, int32_t offset) {
  switch (type.kind) {
    case Type::Kind::Double:
      return instance.field<double>(offset);
    case Type::Kind::Object:
      return objectValue(Ref<Object>::share(instance.field<Object*>(offset)));
    default:
      return instance.field<int32_t>(offset);
  }
}

void writeField(Instance& instance, const Type& type, int32_t offset, const Value& value) {
  if (type.kind == Type::Kind::Double) {
    instance.field<double>(offset) = std::get<double>(value);
  } else if (type.kind == Type::Kind::Object) {
    // The field owns a reference, which changes hands.
    auto*& field = instance.field<Object*>(offset);
    const Ref<Object> old = Ref<Object>::adopt(field);
    field = Ref<Object>::share(objectOf(value)).detach();
  } else {
    instance.field<int32_t>(offset) = std::get<int32_t>(value);
  }
}

Member memberOf(const qrz::PropertyRecord& record) {
  Member member;
  member.isProperty = true;
  member.isRegistered = true;
  member.flags = record.flags;
  member.declaration.name = record.name;
  member.declaration.text = std::string(record.name) + " as " + record.type;
  const Type type = typeNamed(record.type);
  member.declaration.result = type;
  member.assignedType = type;
  member.call = [&record, type](Object* self, std::span<Value> /*none*/) {
    if (isFieldAccess(record.getter)) {
      return readField(static_cast<Instance&>(*self), type, record.param);
    }
    return callGetter(record.getter, self, record.param, type);
  };
  member.assign = [&record, type](Object* self, std::span<Value> /*none*/, const Value& value) {
    if (isFieldAccess(record.setter)) {
      writeField(static_cast<Instance&>(*self), type, record.param, value);
    } else {
      callPropertySetter(record.setter, self, record.param, type, value);
    }
  };
  return member;
}

void addMembers(Class& target, const qrz::ClassRecord& record) {
  for (int32_t i = 0; i < record.propertyCount; ++i) {
    target.members.push_back(memberOf(record.properties[i]));
  }
  for (int32_t i = 0; i < record.methodCount; ++i) {
    if (auto member = memberOf(record.methods[i], Scope::Object))
      target.members.push_back(std::move(*member));
  }
}

}  // namespace

void registerClass(Registry& registry, qrz::ClassRecord& record) {
  record.systemUse = Instance::dataOffset(static_cast<int32_t>(registry.classes().size()));
  Class& added = registry.addClass(record.name);
  added.isRegistered = true;
  added.flags = record.flags;
  added.dataSize = record.dataSize;
  Member constructor;
  constructor.declaration = parseDeclaration(std::string("Constructor() as ") + record.name);
  constructor.call = [&record](Object* /*none*/, std::span<Value> /*none*/) {
    return objectValue(Instance::create(record));
  };
  added.constructors.push_back(std::move(constructor));
  addMembers(added, record);
}

void registerExtension(Registry& registry, qrz::ClassRecord& record) {
  if (Class* extended = registry.findClass(record.name)) {
    addMembers(*extended, record);
  } else {
    runtime().reportMisuse(std::string("an extension of an unknown class: ") + record.name);
  }
}

void registerGlobalMethod(Registry& registry, qrz::MethodRecord& record) {
  if (auto member = memberOf(record, Scope::Global))
    registry.globals().push_back(std::move(*member));
}

}  // namespace host
