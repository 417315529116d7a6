#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

/// Of what serves other systems only.
Description idle(std::string_view className, std::string_view declaration, std::string_view summary,
                 std::vector<Argument> arguments, Example example) {
  return {className, declaration, summary, std::move(arguments), kCannotFail, {std::move(example)}};
}

Argument ignored(std::string_view name) { return {name, "not used", "any"}; }

}  // namespace

std::span<const Description> dataExchangeMembers() {
  static const Description kMembers[] = {
      {"",
       "PicturetoBinaryStringQRZ(p as picture) as string",
       "Turns a picture into a string of bytes: a header of 40, then red, green and blue of every "
       "pixel.",
       {{"p", "the picture", "a picture of at most 715,827,869 pixels"}},
       "An empty string if the picture is nil, too large or cannot be read, or there is no memory.",
       {{"colors",
         "Dim data As String = PicturetoBinaryStringQRZ(self)\n"
         "Left(data, 4) + \", \" + Str(Len(data)) + \" bytes\"",
         "Its first letters and its length.", false}}},
      {"",
       "BinaryStringtoPictureQRZ(data as String) as Picture",
       "Turns such a string back into a picture.",
       {{"data", "the bytes",
         "a string from PicturetoBinaryStringQRZ, neither longer nor shorter"}},
       "Nil if the string is empty or no such string, is not as long as it says, or there is no "
       "memory for the picture.",
       {{"colors", "BinaryStringtoPictureQRZ(PicturetoBinaryStringQRZ(self))",
         "There and back: nothing is lost."},
        {"colors",
         "Dim data As String = PicturetoBinaryStringQRZ(self)\n"
         "Dim rows As Integer = 3 * self.Width * 120\n"
         "BinaryStringtoPictureQRZ(Left(data, 40) + Mid(data, 41 + rows) + Mid(data, 41, rows))",
         "On the way the bytes of the uppermost 120 rows were moved to the end."}}},
      {"Picture",
       "PicHandleQRZ as picture",
       "Makes a picture of PICT data, a recording of what it takes to draw this one (on white "
       "where it has a mask), or gives the picture itself if it is PICT data already.",
       {},
       "Nil if the picture is nil, wider or higher than 32,767 or cannot be recorded, by qrz if it "
       "is wider than 4,095.",
       {{"landscape", "self.PicHandleQRZ", "The recording, drawn again."}}},
      {"Picture",
       "PicHandleDataQRZ as string",
       "Gives the bytes of such a recording (see PicHandleQRZ) as a string, of a picture of PICT "
       "data those that it has.",
       {},
       "An empty string if the picture is nil, wider or higher than 32,767 or cannot be recorded, "
       "by qrz if it is wider than 4,095.",
       {{"landscape", "Str(Len(self.PicHandleDataQRZ)) + \" bytes\"", "Its length.", false}}},
      {"",
       "BuildPictureWithPicHandleDataQRZ(data as string) as picture",
       "Makes a picture of PICT data from the bytes of a recording (see PicHandleDataQRZ).",
       {{"data", "the bytes of PICT data",
         "any string; the first bytes say how large the picture is, that of an empty string is 0 × "
         "0, and damaged data draws as far as it goes, on white"}},
       "Nil if there is no memory or the host refuses.",
       {{"landscape", "BuildPictureWithPicHandleDataQRZ(self.PicHandleDataQRZ)",
         "There and back."}}},
      {"",
       "BuildPictureWithGWorldHandleQRZ(handle as integer, ByPassOwernerShip as boolean) as "
       "picture",
       "Makes a picture that shows a GWorld (the memory behind a picture) that exists already, so "
       "that what is drawn into one shows in the other.",
       {{"handle", "the address of the GWorld",
         "as Graphics.Handle gives it; 0 for none, and no other number"},
        {"ByPassOwernerShip", "whether the new picture owns it",
         "True: it goes with the new picture, so nothing else may own it; False: it has to last as "
         "long as the new picture"}},
       "Nil for 0, and if the host refuses, as qrz does numbers of no GWorld.",
       {{"landscape",
         "Dim shown As Picture = BuildPictureWithGWorldHandleQRZ(self.Graphics.Handle, False)\n"
         "If shown Is Nil Then shown = self\n"
         "shown.Graphics.ForeColor = &cFFC000\n"
         "shown.Graphics.FillRect(40, 40, 80, 80)\n"
         "self",
         "The square was drawn into the second picture."}}},
      idle("Picture", "MakeHBITMAPQRZ as integer",
           "Gives 0: such handles belong to another system.", {},
           {"edges", "self.MakeHBITMAPQRZ", "Always 0.", false}),
      idle("Graphics",
           "StretchDIBitsQRZ(XDest as integer, YDest as integer, DestWidth as integer, DestHeight "
           "as integer, XSource as integer, YSource as integer, SourceWidth as integer, "
           "SourceHeight as integer, Bits as memoryblock, ImageWidth as integer, ImageHeight as "
           "integer, ImageBitCount as integer) as boolean",
           "Draws nothing and gives false: such bitmaps belong to another system.",
           {ignored("XDest"), ignored("YDest"), ignored("DestWidth"), ignored("DestHeight"),
            ignored("XSource"), ignored("YSource"), ignored("SourceWidth"), ignored("SourceHeight"),
            ignored("Bits"), ignored("ImageWidth"), ignored("ImageHeight"),
            ignored("ImageBitCount")},
           {"edges",
            "self.Graphics.StretchDIBitsQRZ(0, 0, 8, 8, 0, 0, 8, 8, New MemoryBlock(256), 8, 8, "
            "32)",
            "Always false.", false}),
      idle("Graphics", "PaintDesktopQRZ",
           "Does nothing: painting the desktop belongs to another system.", {},
           {"edges", "self.Graphics.PaintDesktopQRZ\nself", "The picture stays as it is."}),
  };
  return kMembers;
}

}  // namespace host
