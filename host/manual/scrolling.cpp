#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

constexpr Argument kWrap{"wrap", "whether what leaves on one side comes in on the other",
                         "True or False; without, the uncovered strip becomes white"};
constexpr Argument kScrollMask{"scrollmask", "whether the picture's mask is moved first",
                               "True or False; without a mask it makes no difference"};
constexpr std::string_view kAny = "any; without wrap its low 16 bits, signed";

}  // namespace

std::span<const Description> scrollingMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "ScrollHorizontalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
       "Moves the picture's content sideways, in place.",
       {{"delta", "columns to the right, negative to the left", kAny}, kWrap, kScrollMask},
       "Always true; a picture that is no GWorld stays as it is.",
       {{"landscape", "Call self.ScrollHorizontalQRZ(160, True, False)\nself",
         "To the right: what leaves there comes in on the left."}}},
      {"Picture",
       "ScrollVerticalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
       "Moves the picture's content up or down, in place.",
       {{"delta", "rows down, negative up", kAny}, kWrap, kScrollMask},
       "False, and the picture stays as it is, if it is nil or no GWorld, there is no memory, or "
       "its mask could not be moved.",
       {{"landscape", "Call self.ScrollVerticalQRZ(-100, False, False)\nself",
         "Up, without wrap: the uncovered strip is white."}}},
      {"Picture",
       "ScrollQRZ(deltaX as integer, deltaY as integer, wrap as boolean, scrollmask as boolean) "
       "as boolean",
       "Moves the picture's content sideways, then up or down, in place.",
       {{"deltaX", "columns to the right, negative to the left", kAny},
        {"deltaY", "rows down, negative up", kAny},
        kWrap,
        kScrollMask},
       "False if the picture could not be moved up or down: if it is nil or no GWorld, there is "
       "no memory, or its mask could not be moved.",
       {{"alpha", "Call self.ScrollQRZ(120, 80, True, True)\nself",
         "Both ways at once, and the mask along with the picture."}}},
  };
  return kMembers;
}

}  // namespace host
