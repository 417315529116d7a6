#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {

std::span<const Description> waveformMembers() {
  static const Description kMembers[] = {
      {"",
       "RenderSamplesQRZ(Samples as memoryblock, SampleCount as integer, Smooth as integer, Width "
       "as integer, Height as integer, outlinewidth as integer, BackColor as color=&c88B5C4, "
       "ForeColor as color=&c274C5A, OutLineColor as color=&c203F4E) as Picture",
       "Draws the waveform of a sound: in each column two bars from the middle row, one for each "
       "channel, downwards for positive levels and upwards for negative ones.",
       {{"Samples", "pairs of signed 8-bit levels, left and right",
         "a memory block, not empty; a single byte at its end is ignored"},
        {"SampleCount", "how many pairs are drawn, from the first one on",
         "from 1 on; below, or more than there are: all"},
        {"Smooth", "over how many samples levels are averaged, each channel for itself",
         "1 not at all; more is smoother; 0 and less make no sense: levels swing or grow"},
        {"Width",
         "columns of the picture; of more samples, each shows the last of its stretch, with fewer, "
         "columns without one stay at the middle",
         "from 1 on; below: one for each pair"},
        {"Height",
         "rows of the picture, half of them for the highest averaged level of the right channel, "
         "or for 100 if that is higher; longer bars are cut",
         "from 1 on; below: 500"},
        {"outlinewidth", "the line along the ends of the bars",
         "0 or less none, 1 a fine smooth line, more a pen of that size"},
        {"BackColor", "the ground", "any colour; &c88B5C4 if left out"},
        {"ForeColor", "the bars", "any colour; &c274C5A if left out"},
        {"OutLineColor", "the line", "any colour; &c203F4E if left out"}},
       "Nil if the block is nil or empty, there is neither a pair nor a width, or there is no "
       "memory.",
       {{"", "RenderSamplesQRZ(MemoryBlock.OpenPeaks(\"sample:chord\", 640), 0, 4, 640, 240, 0)",
         "A chord that is plucked note by note and dies away; left channel above, right one "
         "below."},
        {"",
         "RenderSamplesQRZ(MemoryBlock.OpenSamples(\"sample:drums\"), 22050, 3, 640, 240, 1, "
         "&cFFF6E5, &cF0A860, &c9C4A1A)",
         "The first second of two bars of drums, smoothed a little, with an outline and other "
         "colours."},
        {"",
         R"(Dim samples As New MemoryBlock(128)
For i As Integer = 0 To 63
  samples.Int8Value(2 * i) = -90 * Sin(i / 5)
  samples.Int8Value(2 * i + 1) = 90 * Sin(i / 5) * Cos(i / 40)
Next
RenderSamplesQRZ(samples, 0, 1, 640, 240, 5, &c10202C, &c1E5A6E, &c7FE0D0))",
         "Two curves from a formula with a pen five pixels wide; columns without a sample fall "
         "back to the middle."}}},
  };
  return kMembers;
}

}  // namespace host
