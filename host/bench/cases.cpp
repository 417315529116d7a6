#include "host/bench/cases.h"

#include <algorithm>

#include "host/bench/members.h"
#include "host/core/memory_block.h"
#include "host/core/runtime.h"
#include "host/files/memory_block_io.h"

namespace host {
namespace {

constexpr Content kPictures[] = {Content::Photo, Content::Noise};
/// For members whose time no pixel changes.
constexpr Content kAny[] = {Content::Photo};
constexpr Content kHistogram[] = {Content::Photo, Content::Noise, Content::White};
constexpr Content kWhite[] = {Content::White};
constexpr Content kBlack[] = {Content::Black};
constexpr Content kWaveform[] = {Content::Waveform};

using Values = std::vector<Value>;

BenchCall onPicture(const Subject& subject, Values arguments = {}) {
  return {subject.picture, std::move(arguments), {}, {}, {}};
}

BenchCall onGraphics(const Subject& subject, Values arguments = {}) {
  return {makeObject<Graphics>(subject.picture), std::move(arguments), {}, {}, {}};
}

BenchCall global(Values arguments) { return {nullptr, std::move(arguments), {}, {}, {}}; }

BenchCall expecting(BenchCall call, Value expected) {
  call.expected = std::move(expected);
  return call;
}

/// All but a margin of one pixel, where there is more than that.
Values inner(const Subject& subject) {
  const auto [width, height] = subject.size;
  if (width < 3 || height < 3) return {0, 0, width, height};
  return {1, 1, width - 2, height - 2};
}

Ref<Picture> copyOf(const Subject& subject) { return partOf(*subject.picture, 0, 0, subject.size); }

/// Moves a picture of its own by a third of each side.
template <typename... Deltas>
BenchCall scroll(const Subject& subject, bool wrap, Deltas... deltas) {
  return {copyOf(subject), {deltas..., wrap, false}, {}, true, {}};
}
int32_t thirdOf(int32_t length) { return length / 3; }

BenchCall scrollVertical(const Subject& subject, bool wrap) {
  return scroll(subject, wrap, thirdOf(subject.size.height));
}
BenchCall scrollHorizontal(const Subject& subject, bool wrap) {
  return scroll(subject, wrap, thirdOf(subject.size.width));
}
BenchCall scrollBoth(const Subject& subject, bool wrap) {
  return scroll(subject, wrap, thirdOf(subject.size.width), thirdOf(subject.size.height));
}

/// Looks for the last sixteenth of the picture; if it is not to be there, with
/// another last pixel.
BenchCall findPart(const Subject& subject, bool isThere) {
  const PictureSize part{std::max(subject.size.width / 4, 1), std::max(subject.size.height / 4, 1)};
  const int32_t left = subject.size.width - part.width;
  const int32_t top = subject.size.height - part.height;
  const auto pattern = partOf(*subject.picture, left, top, part);
  const uint32_t last = pattern->pixel(part.width - 1, part.height - 1);
  if (!isThere) pattern->fill(part.width - 1, part.height - 1, 1, 1, last ^ 0x010101);
  BenchCall call = onPicture(subject, {objectValue(pattern), 0, 0});
  // A pattern of few pixels may be elsewhere, too.
  return isThere ? expecting(std::move(call), true) : call;
}

/// Finds it where only one pixel, in the middle of that sixteenth, tells it
/// from all the rest.
BenchCall findOddPixel(const Subject& subject) {
  const auto [width, height] = subject.size;
  const auto picture = copyOf(subject);
  picture->fill(width - 1 - width / 8, height - 1 - height / 8, 1, 1, 0xFEFEFE);
  return findPart({subject.content, subject.size, picture, nullptr}, true);
}

/// Looks for a white sixteenth where every window of that size holds just one
/// pixel of another colour.
BenchCall findFlat(const Subject& subject) {
  const PictureSize part{std::max(subject.size.width / 4, 1), std::max(subject.size.height / 4, 1)};
  const auto pattern = partOf(*subject.picture, 0, 0, part);
  const auto picture = copyOf(subject);
  for (int32_t y = part.height - 1; y < subject.size.height; y += part.height) {
    for (int32_t x = part.width - 1; x < subject.size.width; x += part.width) {
      picture->fill(x, y, 1, 1, 0xFEFEFE);
    }
  }
  return expecting({picture, {objectValue(pattern), 0, 0}, {}, {}, {}}, false);
}

BenchCall mapChannels(const Subject& subject) {
  std::vector<uint8_t> bytes(256);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(255 - i);
  const Value table = objectValue(makeObject<MemoryBlock>(bytes));
  return onPicture(subject, {table, table, table});
}

/// What another member makes of the picture.
Value resultOf(std::string_view member, const Subject& subject) {
  for (const NamedMember& named : registeredMembers()) {
    if (named.name != member) continue;
    if (!named.member->declaration.parameters.empty()) {
      Value picture = objectValue(subject.picture);
      return named.member->call(nullptr, {&picture, 1});
    }
    return named.member->call(subject.picture.get(), {});
  }
  return std::string();
}

Value worldOf(const Subject& subject) {
  PixelStore& store = subject.picture->store();
  return store.type() == qrz::kGWorld ? reinterpret_cast<int32_t>(store.data()) : 0;
}

BenchCall waveform(const Subject& subject, int32_t smooth, int32_t outlineWidth) {
  const auto [width, height] = subject.size;
  const Value samples = objectValue(openPeaks("sample:chord", width));
  return global({samples, 0, smooth, width, height, outlineWidth, Color{0x88B5C4}, Color{0x274C5A},
                 Color{0x203F4E}});
}

/// Run of a filter; what it makes is dropped after each call.
BenchCall runOf(const char* className, const Subject& subject, void (*prepare)(Object* instance)) {
  const Value made =
      runtime().registry.findClass(className)->constructors.front().call(nullptr, {});
  const auto instance = Ref<Object>::share(objectOf(made));
  memberOf(className, "SourcePicture").assign(instance.get(), {}, objectValue(subject.picture));
  prepare(instance.get());
  const Member& result = memberOf(className, "DestinationPicture");
  return {
      instance, {}, {}, true, [&result, instance] { result.assign(instance.get(), {}, Nil{}); }};
}

/// A bright and warm look.
void fillTable(Object* lut) {
  const Member& table = memberOf("PictureLut3DQRZ", "Table");
  for (int32_t i = 0; i < 16 * 16 * 16; ++i) {
    const int32_t point[] = {i >> 8, i >> 4 & 15, i & 15};
    for (int32_t channel = 0; channel < 3; ++channel) {
      Value indexes[] = {point[0], point[1], point[2], channel};
      table.assign(lut, indexes, std::min(255.0, 17.0 * point[channel] * (1.15 - 0.2 * channel)));
    }
  }
}

void setTone(Object* sepia) {
  memberOf("PictureSepiaQRZ", "SepiaRed").assign(sepia, {}, 40);
  memberOf("PictureSepiaQRZ", "SepiaGreen").assign(sepia, {}, 14);
  memberOf("PictureSepiaQRZ", "SepiaBlue").assign(sepia, {}, -26);
}

constexpr auto kGWorlds = BenchCase::Limit::GWorlds;
constexpr auto kRecording = BenchCase::Limit::Recording;

using S = const Subject&;

// clang-format off
constexpr BenchCase kCases[] = {
    {"ChangeBrightnessLinearQRZ(x)", "", kPictures, [](S s) { return onPicture(s, {120.0}); }},
    {"ChangeBrightnessLinearQRZ(r, g, b)", "", kPictures, [](S s) { return onPicture(s, {90.0, 0.0, -120.0}); }},
    {"ChangeBrightnessAbsoluteQRZ(x)", "", kPictures, [](S s) { return onPicture(s, {70.0}); }},
    {"ChangeBrightnessAbsoluteQRZ(r, g, b)", "", kPictures, [](S s) { return onPicture(s, {-40.0, 0.0, 60.0}); }},
    {"ChangeContrastQRZ(x)", "", kPictures, [](S s) { return onPicture(s, {0.8}); }},
    {"ChangeContrastQRZ(xr, xg, xb)", "", kPictures, [](S s) { return onPicture(s, {1.0, 0.0, -1.0}); }},
    {"ChangeCustomQRZ", "", kPictures, [](S s) { return onPicture(s, {-0.8, 230.0}); }},
    {"InvertQRZ", "", kPictures, [](S s) { return onPicture(s); }},
    {"InvertQRZ(left, top, width, height)", "", kPictures, [](S s) { return onPicture(s, inner(s)); }},
    {"InvertGrayQRZ", "", kPictures, [](S s) { return onPicture(s); }},
    {"InvertGrayQRZ(left, top, width, height)", "", kPictures, [](S s) { return onPicture(s, inner(s)); }},

    {"ChangeSaturationQRZ", "", kPictures, [](S s) { return onPicture(s, {300}); }},
    {"TintPictureQRZ", "", kPictures, [](S s) { return global({objectValue(s.picture), Color{0x4C961D}, Color{0xFFE0B0}}); }},
    {"TransformColorsQRZ", "", kPictures, mapChannels},
    {"ReplaceColorQRZ", "", kPictures, [](S s) { return onPicture(s, {Color{s.picture->pixel(0, 0)}, Color{0x2E9E5B}}); }},
    {"ExtractColorQRZ", "", kPictures, [](S s) { return onPicture(s, {Color{s.picture->pixel(0, 0)}, Color{0}, Color{0xE8E8E8}}); }},

    {"ReplaceRedChannelQRZ", "", kPictures, [](S s) { return onPicture(s, {objectValue(s.other)}); }},
    {"ReplaceGreenChannelQRZ", "", kPictures, [](S s) { return onPicture(s, {objectValue(s.other)}); }},
    {"ReplaceBlueChannelQRZ", "", kPictures, [](S s) { return onPicture(s, {objectValue(s.other)}); }},
    {"CombinePicturesQRZ", "", kPictures, [](S s) { return global({objectValue(s.picture), objectValue(s.other), objectValue(copyOf(s))}); }},
    {"MergePictureQRZ", "", kPictures, [](S s) { return global({objectValue(s.picture), objectValue(s.other)}); }},

    {"HasMaskQRZ", "", kAny, [](S s) { return onPicture(s); }},
    {"EmbeddedMaskQRZ", "", kPictures, [](S s) { return onPicture(s, {false}); }},
    {"EmbeddedMaskQRZ", "assigned", kPictures, [](S s) { return BenchCall{copyOf(s), {false}, objectValue(s.other), {}, {}}; }},
    {"ExtractColorRectangleMaskQRZ", "", kPictures, [](S s) { return onPicture(s); }},
    {"ExtractColorRectangleMaskQRZ(left, top, width, height)", "", kPictures, [](S s) { return onPicture(s, inner(s)); }},

    {"FindPicture", "found at the end", kPictures, [](S s) { return findPart(s, true); }},
    {"FindPicture", "not there", kPictures, [](S s) { return findPart(s, false); }},
    {"FindPicture", "flat, one odd pixel", kWhite, findOddPixel},
    {"FindPicture", "worst case", kWhite, findFlat},
    {"CountColorQRZ", "", kPictures, [](S s) { return onPicture(s, {Color{s.picture->pixel(0, 0)}}); }},
    {"CountColorsQRZ", "", kHistogram, [](S s) { return onPicture(s, {Nil{}, Nil{}, Nil{}, 0}); }},
    {"isWhiteQRZ", "", kWhite, [](S s) { return expecting(onPicture(s), true); }},
    {"isWhiteQRZ(left, top, width, height)", "", kWhite, [](S s) { return expecting(onPicture(s, inner(s)), true); }},
    {"isBlackQRZ", "", kBlack, [](S s) { return expecting(onPicture(s), true); }},
    {"isBlackQRZ(left, top, width, height)", "", kBlack, [](S s) { return expecting(onPicture(s, inner(s)), true); }},

    {"ScrollVerticalQRZ", "wrap", kAny, [](S s) { return scrollVertical(s, true); }, kGWorlds},
    {"ScrollVerticalQRZ", "no wrap", kAny, [](S s) { return scrollVertical(s, false); }, kGWorlds},
    {"ScrollHorizontalQRZ", "wrap", kAny, [](S s) { return scrollHorizontal(s, true); }, kGWorlds},
    {"ScrollHorizontalQRZ", "no wrap", kAny, [](S s) { return scrollHorizontal(s, false); }, kGWorlds},
    {"ScrollQRZ", "wrap", kAny, [](S s) { return scrollBoth(s, true); }, kGWorlds},
    {"ScrollQRZ", "no wrap", kAny, [](S s) { return scrollBoth(s, false); }, kGWorlds},

    {"PictureLut3DQRZ.Run", "", kPictures, [](S s) { return runOf("PictureLut3DQRZ", s, fillTable); }},
    {"PictureSepiaQRZ.Run", "", kPictures, [](S s) { return runOf("PictureSepiaQRZ", s, setTone); }},

    {"RenderSamplesQRZ", "bars", kWaveform, [](S s) { return waveform(s, 4, 0); }},
    {"RenderSamplesQRZ", "thin outline", kWaveform, [](S s) { return waveform(s, 4, 1); }},
    {"RenderSamplesQRZ", "wide outline", kWaveform, [](S s) { return waveform(s, 4, 5); }},

    {"PicturetoBinaryStringQRZ", "", kPictures, [](S s) { return global({objectValue(s.picture)}); }},
    {"BinaryStringtoPictureQRZ", "", kPictures, [](S s) { return global({resultOf("PicturetoBinaryStringQRZ", s)}); }},
    {"PicHandleQRZ", "", kPictures, [](S s) { return onPicture(s); }, kRecording},
    {"PicHandleDataQRZ", "", kPictures, [](S s) { return onPicture(s); }, kRecording},
    {"BuildPictureWithPicHandleDataQRZ", "", kPictures, [](S s) { return global({resultOf("PicHandleDataQRZ", s)}); }, kRecording},
    {"BuildPictureWithGWorldHandleQRZ", "", kAny, [](S s) { return global({worldOf(s), false}); }, kGWorlds},

    {"MakeHBITMAPQRZ", "", kAny, [](S s) { return onPicture(s); }},
    {"StretchDIBitsQRZ", "", kAny, [](S s) { return onGraphics(s, {0, 0, 8, 8, 0, 0, 8, 8, Nil{}, 8, 8, 32}); }},
    {"PaintDesktopQRZ", "", kAny, [](S s) { return onGraphics(s); }},
};
// clang-format on

/// Besides properties, which hold values.
constexpr std::string_view kWithoutPixels[] = {
    "PictureLut3DQRZ.Close",
    "PictureLut3DQRZ.Table",
    "PictureSepiaQRZ.Close",
};

}  // namespace

std::string BenchCase::name() const {
  std::string text(member);
  if (!variant.empty()) text.append(", ").append(variant);
  return text;
}

std::span<const BenchCase> benchCases() { return kCases; }

std::vector<std::string> membersWithoutCase() {
  std::vector<std::string> names;
  for (const NamedMember& named : registeredMembers()) {
    const auto isIt = [&named](const BenchCase& entry) { return entry.member == named.name; };
    if (named.member->isProperty || std::ranges::count(kWithoutPixels, named.name) > 0) continue;
    if (std::ranges::none_of(kCases, isIt)) names.push_back(named.name);
  }
  return names;
}

}  // namespace host
