#include "host/manual/manual.h"

#include <sstream>
#include <stdexcept>
#include <vector>

#include "host/core/interrupt.h"
#include "host/core/runtime.h"
#include "host/files/picture_io.h"
#include "host/manual/page.h"
#include "host/manual/description.h"
#include "host/script/conversion.h"
#include "host/script/script.h"

namespace host {
namespace {

bool shows(const Recipe& recipe, std::string_view className, const Member& member) {
  return sameName(recipe.className, className) && recipe.declaration == member.declaration.text;
}

bool hasRecipe(std::string_view className, const Member& member) {
  for (const RecipeGroup& group : recipeGroups()) {
    for (const Recipe& recipe : group.recipes) {
      if (shows(recipe, className, member)) return true;
    }
  }
  return false;
}

/// Throws if a registered member has no recipe.
void checkMembers(std::string_view className, const std::vector<Member>& members) {
  for (const Member& member : members) {
    if (member.isRegistered && !hasRecipe(className, member)) {
      throw std::logic_error("the gallery has no recipe for " + std::string(className) +
                             (className.empty() ? "" : ".") + member.declaration.text);
    }
  }
}

void checkAllMembers() {
  Registry& registry = runtime().registry;
  for (const Class& entry : registry.classes()) checkMembers(entry.name, entry.members);
  checkMembers("", registry.globals());
}

/// Another build of the plug-in may lack members.
bool isRegistered(const Recipe& recipe) {
  Registry& registry = runtime().registry;
  const Class* owner = registry.findClass(recipe.className);
  if (owner == nullptr && !recipe.className.empty()) return false;
  for (const Member& member : owner != nullptr ? owner->members : registry.globals()) {
    if (member.isRegistered && shows(recipe, recipe.className, member)) return true;
  }
  return false;
}

/// What a reader copies: of a single line the expression alone, which also
/// works on the command line.
std::string shownProgram(std::string_view program) {
  constexpr std::string_view assignment = "result = ";
  const bool isOneLine = program.find('\n') == std::string_view::npos;
  if (isOneLine && program.starts_with(assignment)) program.remove_prefix(assignment.size());
  return std::string(program);
}

/// Members of the plug-in's own classes are named with their class.
std::string shownName(const Recipe& recipe) {
  const Class* owner = runtime().registry.findClass(recipe.className);
  const std::string name = parseDeclaration(recipe.declaration).name;
  return owner != nullptr && owner->isRegistered ? owner->name + "." + name : name;
}

GalleryEntry entryFor(const Recipe& recipe) {
  GalleryEntry entry;
  std::ostringstream output;
  Interpreter interpreter(runtime().registry, output);
  if (!recipe.sample.empty()) {
    const auto before = openPicture("sample:" + std::string(recipe.sample));
    entry.before = imageOf(*before);
    interpreter.setVariable("self", objectValue(before));
  }
  interpreter.setVariable("result", Nil{});
  interpreter.run(Script::parse(std::string(recipe.program), std::string(recipe.declaration)));
  const Value result = interpreter.evaluate("result", "result");

  entry.declaration = recipe.declaration;
  entry.member = shownName(recipe);
  entry.expression = shownProgram(recipe.program);
  entry.note = recipe.note;
  if (const auto* picture = objectAs<Picture>(result)) {
    entry.after = imageOf(*picture);
  } else {
    entry.value = textOf(result);
  }
  return entry;
}

}  // namespace

std::string makeGalleryPage() {
  checkAllMembers();
  std::vector<GalleryGroup> groups;
  for (const RecipeGroup& group : recipeGroups()) {
    GalleryGroup shown{std::string(group.title), {}};
    for (const Recipe& recipe : group.recipes) {
      checkInterrupt();
      if (isRegistered(recipe)) shown.entries.push_back(entryFor(recipe));
    }
    if (!shown.entries.empty()) groups.push_back(std::move(shown));
  }
  return galleryPage(groups);
}

}  // namespace host
