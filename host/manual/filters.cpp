#include <vector>

#include "host/manual/groups.h"
#include "host/manual/phrases.h"

namespace host {
namespace {

using Descriptions = std::vector<Description>;

constexpr std::string_view kLut = "PictureLut3DQRZ";
constexpr std::string_view kSepia = "PictureSepiaQRZ";

/// A property, which any value of its type may be assigned to.
Description property(std::string_view className, std::string_view declaration,
                     std::string_view summary, Argument value, std::vector<Example> examples) {
  value.name = "value";
  return {className, declaration, summary, {value}, kCannotFail, std::move(examples)};
}

/// What both classes have beside Run. `variable` is an instance's name in the
/// examples, and `setup` makes one that is ready to run on self.
struct Filter {
  std::string_view className;
  std::string variable;
  std::string setup;
  std::string_view sample;

  [[nodiscard]] std::string with(const std::string& assignment) const {
    return setup + variable + "." + assignment + "\nCall " + variable + ".Run\n" + variable +
           ".DestinationPicture";
  }
};

Descriptions pictureProperties(const Filter& filter, std::string_view destination,
                               std::string_view destinationRange) {
  return {
      property(filter.className, "SourcePicture as Picture",
               "The picture that Run reads; it stays as it is.",
               {"", "the picture", "a picture or Nil, as at first, with which Run gives false"},
               {{filter.sample, filter.setup + filter.variable + ".SourcePicture",
                 "What was assigned, unchanged."}}),
      property(filter.className, "DestinationPicture as Picture", destination,
               {"", "the picture", destinationRange},
               {{filter.sample,
                 "Dim " + filter.variable + " As New " + std::string(filter.className) + "\n" +
                     filter.variable + ".SourcePicture = self\nCall " + filter.variable + ".Run\n" +
                     filter.variable + ".DestinationPicture",
                 filter.className == kLut ? "A table that was never filled makes every pixel black."
                                          : "Without offsets it is a grey picture."}}),
  };
}

Descriptions regionProperties(const Filter& filter) {
  constexpr std::string_view kFirst =
      "any, 0 at first; less counts as 0; beyond the picture: Run writes nothing";
  constexpr std::string_view kEndX =
      "any, 0 at first; not above MinX, or beyond the picture: up to its right edge; 0 or less, "
      "but above MinX: Run writes nothing";
  constexpr std::string_view kEndY =
      "any, 0 at first; not above MinY, or beyond the picture: up to its lower edge; 0 or less, "
      "but above MinY: Run writes nothing";
  return {
      property(filter.className, "MinX as Integer",
               "The first column that Run writes; those before it are white.",
               {"", "the column", kFirst},
               {{filter.sample, filter.with("MinX = 120"), "The left half stays white."}}),
      property(filter.className, "MinY as Integer",
               "The first row that Run writes; those above it are white.", {"", "the row", kFirst},
               {{filter.sample, filter.with("MinY = 80"), "The upper half stays white."}}),
      property(filter.className, "MaxX as Integer",
               "The column after the last one that Run writes; it and those behind it are white.",
               {"", "the column", kEndX},
               {{filter.sample, filter.with("MaxX = 120"), "The right half stays white."}}),
      property(filter.className, "MaxY as Integer",
               "The row after the last one that Run writes; it and those below it are white.",
               {"", "the row", kEndY},
               {{filter.sample, filter.with("MaxY = 80"), "The lower half stays white."}}),
  };
}

Description closing(const Filter& filter, std::string_view summary) {
  return {filter.className,
          "Close",
          summary,
          {},
          "Cannot fail, also if it is called twice.",
          {{filter.sample,
            filter.setup + filter.variable + ".Close\n" + filter.variable + ".SourcePicture Is Nil",
            "The picture is released.", false}}};
}

// ---- The three-dimensional table

constexpr const char* kRunTable = "Call lut.Run\nlut.DestinationPicture";

/// A table for self, filled by statements for each of its points.
std::string filledTable(const std::string& statements) {
  return R"(Dim lut As New PictureLut3DQRZ
For r As Integer = 0 To 15
  For g As Integer = 0 To 15
    For b As Integer = 0 To 15
)" + statements +
         R"(    Next
  Next
Next
lut.SourcePicture = self
)";
}

Filter tableFilter() {
  return {kLut, "lut", filledTable(R"(      lut.Table(r, g, b, 0) = 17 * b
      lut.Table(r, g, b, 1) = 17 * r
      lut.Table(r, g, b, 2) = 17 * g
)"),
          "gradients@240x160"};
}

Descriptions tableMembers() {
  constexpr std::string_view kIndex =
      "0 to 17; Run uses 0 to 15, which stand for the levels 0, 17, 34 … 255";
  return {
      {kLut,
       "Run as boolean",
       "Maps every pixel of the region through the table, interpolated between its points, into a "
       "new DestinationPicture, which is white outside the region.",
       {},
       "False, with a DestinationPicture of Nil, if there is no SourcePicture, it cannot be read, "
       "or there is no memory for the new one.",
       {{"landscape", filledTable(R"(      lut.Table(r, g, b, 0) = 17 * r * 1.15 + 12
      lut.Table(r, g, b, 1) = 17 * g * 0.95
      lut.Table(r, g, b, 2) = 17 * b * 0.7 + 30
)") + kRunTable,
         "A warm look from a table of 16 × 16 × 16 colours."}}},
      {kLut,
       "Table(r as integer, g as integer, b as integer, x as integer) as double",
       "What the colour of one point of the table becomes in one channel, to read and to assign; 0 "
       "at first.",
       {{"r", "the point's place in red", kIndex},
        {"g", "the point's place in green", kIndex},
        {"b", "the point's place in blue", kIndex},
        {"x", "the channel of the result", "0 red, 1 green, 2 blue"},
        {"value", "the level, when it is assigned",
         "any number; Run drops fractions of what it interpolates and stops at 0 and 255; what is "
         "no number gives 0"}},
       "0 outside the table; an assignment there does nothing.",
       {{"edges", filledTable(R"(      For x As Integer = 0 To 2
        lut.Table(r, g, b, x) = 17 * (r * (2 - x) + b * x) / 2
      Next
)") + kRunTable,
         "Any formula fills the table: here red and blue change places, and green is between "
         "them."}}},
  };
}

// ---- Toned grey

Filter toner(const std::string& properties =
                 "sepia.SepiaRed = 40\n"
                 "sepia.SepiaGreen = 14\n"
                 "sepia.SepiaBlue = -26\n",
             std::string_view sample = "landscape@240x160") {
  return {kSepia, "sepia",
          "Dim sepia As New PictureSepiaQRZ\nsepia.SourcePicture = self\n" + properties, sample};
}

Descriptions tonerRun() {
  return {{kSepia,
           "Run as boolean",
           "Makes a weighted grey of every pixel of the region and adds an offset to each channel, "
           "into a new DestinationPicture, which is white outside the region.",
           {},
           "False, with DestinationPicture as it was, if there is no SourcePicture, it cannot be "
           "read, or there is no memory for the new one.",
           {{"landscape", toner().setup + "Call sepia.Run\nsepia.DestinationPicture",
             "Warm tones, like an old print."}}}};
}

Descriptions offsetProperties() {
  constexpr std::string_view kOffset = "any, 0 at first; a result beyond 0 or 255 stops there";
  const Filter plain = toner("");
  return {
      property(kSepia, "SepiaRed as Integer", "What is added to the grey for red.",
               {"", "the offset", kOffset},
               {{plain.sample, plain.with("SepiaRed = 60"), "Alone it makes a red tone."}}),
      property(kSepia, "SepiaGreen as Integer", "What is added to the grey for green.",
               {"", "the offset", kOffset},
               {{plain.sample, plain.with("SepiaGreen = 60"), "Alone it makes a green tone."}}),
      property(kSepia, "SepiaBlue as Integer", "What is added to the grey for blue.",
               {"", "the offset", kOffset},
               {{plain.sample, plain.with("SepiaBlue = 60"),
                 "Alone it makes a blue tone, like a blueprint."}}),
  };
}

Descriptions factorProperties() {
  constexpr std::string_view kWeight =
      "any number; Run drops what is beyond whole 1024ths, takes at least -2,097,152 and at most "
      "2,097,151, and 0 for what is no number";
  const std::string_view sample = "colors@240x160";
  const Filter noGreen = toner("sepia.FactorGreen = 0\nsepia.FactorBlue = 0\n", sample);
  const Filter noRed = toner("sepia.FactorRed = 0\nsepia.FactorBlue = 0\n", sample);
  const Filter neither = toner("sepia.FactorRed = 0\nsepia.FactorGreen = 0\n", sample);
  return {
      property(
          kSepia, "FactorRed as Double", "How much red counts in the grey; 0.299 at first.",
          {"", "the weight", kWeight},
          {{sample, noGreen.with("FactorRed = 1"),
            "With red alone, red, orange and yellow balls are light, blue and green ones dark."}}),
      property(kSepia, "FactorGreen as Double",
               "How much green counts in the grey; 0.587 at first.", {"", "the weight", kWeight},
               {{sample, noRed.with("FactorGreen = 1"),
                 "With green alone, yellow and light green balls are light, red and violet ones "
                 "dark."}}),
      property(kSepia, "FactorBlue as Double", "How much blue counts in the grey; 0.114 at first.",
               {"", "the weight", kWeight},
               {{sample, neither.with("FactorBlue = 1"),
                 "With blue alone, blue balls are light, red, orange and yellow ones dark."}}),
  };
}

Descriptions allMembers() {
  Descriptions members;
  const auto add = [&members](const Descriptions& more) {
    members.insert(members.end(), more.begin(), more.end());
  };
  add(tableMembers());
  add(pictureProperties(
      tableFilter(), "The new picture that the last Run made; Nil where that failed.",
      "a picture or Nil, as at first; the next Run lets go of it, even if it fails"));
  add(regionProperties(tableFilter()));
  add({closing(tableFilter(), "Releases both pictures; table and region stay.")});
  add(tonerRun());
  add(offsetProperties());
  add(factorProperties());
  add(pictureProperties(toner(), "The new picture that the last successful Run made.",
                        "a picture or Nil, as at first; the next Run that succeeds replaces it"));
  add(regionProperties(toner()));
  add({closing(toner(), "Releases both pictures; offsets, weights and region stay.")});
  return members;
}

}  // namespace

std::span<const Description> filterMembers() {
  static const Descriptions members = allMembers();
  return members;
}

}  // namespace host
