#include "host/manual/groups.h"

namespace host {
namespace {

constexpr std::string_view kRenderSamples =
    "RenderSamplesQRZ(Samples as memoryblock, SampleCount as integer, Smooth as integer, Width as "
    "integer, Height as integer, outlinewidth as integer, BackColor as color=&c88B5C4, ForeColor "
    "as color=&c274C5A, OutLineColor as color=&c203F4E) as Picture";

}  // namespace

std::span<const Recipe> waveformRecipes() {
  static constexpr Recipe kRecipes[] = {
      {"", kRenderSamples, "",
       "result = RenderSamplesQRZ(MemoryBlock.OpenPeaks(\"sample:chord\", 640), 0, 4, 640, 240, 0)",
       "A chord that is plucked note by note and dies away; left channel above, right one below."},
      {"", kRenderSamples, "",
       "result = RenderSamplesQRZ(MemoryBlock.OpenSamples(\"sample:drums\"), 22050, 3, 640, 240, "
       "1, &cFFF6E5, &cF0A860, &c9C4A1A)",
       "The first second of two bars of drums, smoothed a little, with an outline and other "
       "colours."},
      {"", kRenderSamples, "",
       R"(Dim samples As New MemoryBlock(128)
For i As Integer = 0 To 63
  samples.Int8Value(2 * i) = -90 * Sin(i / 5)
  samples.Int8Value(2 * i + 1) = 90 * Sin(i / 5) * Cos(i / 40)
Next
result = RenderSamplesQRZ(samples, 0, 1, 640, 240, 5, &c10202C, &c1E5A6E, &c7FE0D0))",
       "Two curves from a formula, ten columns a sample, with a pen five pixels wide; columns "
       "without a sample fall back to the middle."},
  };
  return kRecipes;
}

}  // namespace host
