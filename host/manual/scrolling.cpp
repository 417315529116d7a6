#include "host/manual/groups.h"

namespace host {

std::span<const Recipe> scrollRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"Picture",
       "ScrollHorizontalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
       "landscape", "Call self.ScrollHorizontalQRZ(160, True, False)\nresult = self",
       "To the right, with wrap: what leaves on one side comes in on the other."},
      {"Picture",
       "ScrollVerticalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
       "landscape", "Call self.ScrollVerticalQRZ(-100, False, False)\nresult = self",
       "Up, without wrap: the uncovered strip is white. Pictures kept as GWorlds scroll, others "
       "stay."},
      {"Picture",
       "ScrollQRZ(deltaX as integer, deltaY as integer, wrap as boolean, scrollmask as boolean) "
       "as boolean",
       "alpha", "Call self.ScrollQRZ(120, 80, True, True)\nresult = self",
       "Both ways at once, and the mask along with the picture."},
  };
  return kRecipes;
}

}  // namespace host
