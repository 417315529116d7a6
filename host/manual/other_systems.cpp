#include "host/manual/groups.h"

namespace host {

std::span<const Recipe> otherRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"Picture", "MakeHBITMAPQRZ as integer", "edges", "result = self.MakeHBITMAPQRZ",
       "Always 0 here."},
      {"Graphics",
       "StretchDIBitsQRZ(XDest as integer, YDest as integer, DestWidth as integer, DestHeight as "
       "integer, XSource as integer, YSource as integer, SourceWidth as integer, SourceHeight as "
       "integer, Bits as memoryblock, ImageWidth as integer, ImageHeight as integer, ImageBitCount "
       "as integer) as boolean",
       "edges",
       "result = self.Graphics.StretchDIBitsQRZ(0, 0, 8, 8, 0, 0, 8, 8, New MemoryBlock(256), 8, "
       "8, "
       "32)",
       "Draws nothing here and says so: false."},
      {"Graphics", "PaintDesktopQRZ", "edges", "self.Graphics.PaintDesktopQRZ\nresult = self",
       "Does nothing here."},
  };
  return kRecipes;
}

}  // namespace host
