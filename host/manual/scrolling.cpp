#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

constexpr Argument kWrap{
    "wrap", "whether what leaves on one side comes in on the other",
    "True or False, which makes the uncovered strip white, of the mask as well"};
constexpr Argument kScrollMask{"scrollmask", "whether the picture's mask is moved first",
                               "True or False; without a mask it makes no difference"};
constexpr std::string_view kAny =
    "any; with wrap the content goes round and round, without wrap nothing is left beyond the "
    "picture's size, and of numbers beyond -32,768 to 32,767 only the low 16 bits count, signed";

}  // namespace

std::span<const Description> scrollingMembers() {
  static const Description kMembers[] = {
      {"Picture",
       "ScrollHorizontalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
       "Moves the picture's content sideways, in place.",
       {{"delta", "columns to the right, negative to the left", kAny}, kWrap, kScrollMask},
       "Always true; a picture that is no GWorld (with wrap, none of 24 or 32 bits a pixel; PICT "
       "data is none, nor is any picture with --pictures bitmap) stays as it is, and so does any "
       "if there is no memory; its mask is moved all the same if it can be.",
       {{"landscape", "Call self.ScrollHorizontalQRZ(160, True, False)\nself",
         "To the right: what leaves there comes in on the left."}}},
      {"Picture",
       "ScrollVerticalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
       "Moves the picture's content up or down, in place.",
       {{"delta", "rows down, negative up", kAny}, kWrap, kScrollMask},
       "False, and the picture stays as it is, if delta is not 0 and the picture is no GWorld "
       "(with wrap, none of 24 or 32 bits a pixel; PICT data is none, nor is any picture with "
       "--pictures bitmap), if there is no memory to wrap with, or if its mask could not be moved; "
       "a mask that was moved stays moved.",
       {{"landscape", "Call self.ScrollVerticalQRZ(-100, False, False)\nself",
         "Up, without wrap: the uncovered strip is white."}}},
      {"Picture",
       "ScrollQRZ(deltaX as integer, deltaY as integer, wrap as boolean, scrollmask as boolean) as "
       "boolean",
       "Moves the picture's content sideways, then up or down, in place.",
       {{"deltaX", "columns to the right, negative to the left", kAny},
        {"deltaY", "rows down, negative up", kAny},
        kWrap,
        kScrollMask},
       "False if the picture could not be moved up or down, as with ScrollVerticalQRZ; what was "
       "moved sideways before stays moved.",
       {{"alpha", "Call self.ScrollQRZ(120, 80, True, True)\nself",
         "Both ways at once, and the mask along with the picture."}}},
  };
  return kMembers;
}

}  // namespace host
