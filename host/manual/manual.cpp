#include "host/manual/manual.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "host/core/interrupt.h"
#include "host/core/runtime.h"
#include "host/files/image_file.h"
#include "host/files/picture_io.h"
#include "host/manual/description.h"
#include "host/script/conversion.h"
#include "host/script/script.h"

namespace host {
namespace {

/// Another build of the plug-in may lack members.
bool isRegistered(const Description& description) {
  Registry& registry = runtime().registry;
  const Class* owner = registry.findClass(description.className);
  if (owner == nullptr && !description.className.empty()) return false;
  return std::ranges::any_of(
      owner != nullptr ? owner->members : registry.globals(), [&](const Member& member) {
        return member.isRegistered &&
               findDescription(description.className, member) == &description;
      });
}

class ManualMaker {
 public:
  Manual make() {
    for (const DescriptionGroup& group : descriptionGroups()) {
      ShownGroup shown{std::string(group.title), {}};
      for (const Description& description : group.members) {
        if (isRegistered(description)) shown.members.push_back(shownMember(description));
      }
      if (!shown.members.empty()) manual_.groups.push_back(std::move(shown));
    }
    return std::move(manual_);
  }

 private:
  ShownMember shownMember(const Description& description) {
    ShownMember member;
    member.name = shownName(description);
    const int count = ++counts_[member.name];
    member.anchor = member.name + (count > 1 ? "-" + std::to_string(count) : "");
    member.declaration = description.declaration;
    member.summary = description.summary;
    for (const Argument& argument : description.arguments) {
      member.arguments.push_back(
          {std::string(argument.name), std::string(argument.meaning), std::string(argument.range)});
    }
    member.failure = description.failure;
    char letter = 'a';
    for (const Example& example : description.examples) {
      checkInterrupt();
      const std::string suffix = letter == 'a' ? "" : std::string(".") + letter;
      member.examples.push_back(shownExample(example, member.anchor + suffix));
      ++letter;
    }
    return member;
  }

  ShownExample shownExample(const Example& example, const std::string& name) {
    ShownExample shown{example.program, commandOf(example), std::string(example.note), {}, {}, {}};
    Interpreter interpreter(runtime().registry, unused_);
    if (!example.sample.empty()) {
      const auto self = openPicture("sample:" + std::string(example.sample));
      shown.before = sample(std::string(example.sample), *self);
      interpreter.setVariable("self", objectValue(self));
    }
    const Value result = interpreter.evaluate(example.program, name);
    if (const auto* picture = objectAs<Picture>(result)) {
      shown.after = add(name, imageOf(*picture));
    } else {
      shown.value = textOf(result);
    }
    return shown;
  }

  /// A built-in picture; most are the subject of many examples.
  ShownPicture sample(std::string name, const Picture& picture) {
    std::ranges::replace(name, '@', '-');
    const auto known = samples_.find(name);
    if (known != samples_.end()) return known->second;
    return samples_[name] = add(name, imageOf(picture));
  }

  /// As JPEG if PNG, which keeps every pixel as it is, takes much more.
  ShownPicture add(const std::string& name, const Image& image) {
    std::vector<uint8_t> bytes = encodePng(image);
    std::string extension = ".png";
    if (!image.hasAlpha) {
      std::vector<uint8_t> jpeg = encodeJpeg(image);
      if (2 * jpeg.size() < bytes.size()) {
        bytes = std::move(jpeg);
        extension = ".jpg";
      }
    }
    manual_.pictures.push_back({"pictures/" + name + extension, std::move(bytes)});
    return {manual_.pictures.back().file, image.width, image.height};
  }

  Manual manual_;
  std::map<std::string, int> counts_;  ///< of the members of each name so far
  std::map<std::string, ShownPicture> samples_;
  std::ostringstream unused_;
};

}  // namespace

Manual makeManual() { return ManualMaker().make(); }

}  // namespace host
