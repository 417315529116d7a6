// What people are told of each registered member. Everything about members that
// anybody reads comes from here: `qrz members NAME`, docs/members.md, the gallery.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/registry.h"

namespace host {

/// A parameter of a method, or the value of a property or of an assignment.
struct Argument {
  std::string_view name;  ///< as declared; "value" of a property
  std::string_view meaning;
  std::string_view range;  ///< which values it may have, and what others do
};

/// A program that shows a member at work, and runs as it stands.
struct Example {
  std::string_view sample;  ///< the built-in picture that `self` is, perhaps in a size of its own
                            ///< ("greys@240x160"); empty for none
  /// Lines, of which the last is an expression: what is shown, a picture or any value.
  std::string program;
  std::string_view note;  ///< one sentence about what is seen
  bool makesPicture = true;
};

struct Description {
  std::string_view className;       ///< of the member; empty for global methods
  std::string_view declaration;     ///< as registered
  std::string_view summary;         ///< what it does, one sentence
  std::vector<Argument> arguments;  ///< in the order of the declaration
  std::string_view failure;         ///< what it gives when it cannot do its work
  std::vector<Example> examples;    ///< at least one
};

struct DescriptionGroup {
  std::string_view title;  ///< as users think of the members
  std::span<const Description> members;
};

/// In the order in which they are shown.
std::span<const DescriptionGroup> descriptionGroups();

/// Null if there is none, as for members of another build of the plug-in.
const Description* findDescription(std::string_view className, const Member& member);

/// What is wrong with the descriptions, a line each; empty if they are those of the registered
/// members, of all of them and their parameters.
std::vector<std::string> descriptionFaults(Registry& registry);

/// The member's name as it is shown: "InvertQRZ", and with the class's name for members of the
/// plug-in's own classes, "PictureSepiaQRZ.Run".
std::string shownName(const Description& description);

/// The example's program in one line.
std::string lineOf(const Example& example);

/// The line for a shell that runs the example.
std::string commandOf(const Example& example);

}  // namespace host
