// The benchmark, as its users run it, and the recycling of pixel stores.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>

#include "host/bench/instruction_trace.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "host/core/store_pool.h"
#include "platform/standin/standin.h"
#include "tests/support/command.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

// --- The command -------------------------------------------------------------

struct Entry {
  std::string name, level;  ///< "InvertQRZ 16x16 photo"
  double fastest, median, copy, ratio;
};

class BenchTest : public FolderTest {
 protected:
  [[nodiscard]] std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  /// The results in a file, which are to be spelled exactly like this.
  [[nodiscard]] std::vector<Entry> entriesIn(const std::string& name) const {
    const std::string text = read(name);
    constexpr std::string_view kStart = "{\"results\": [\n";
    constexpr std::string_view kEnd = "\n]}\n";
    EXPECT_TRUE(text.starts_with(kStart) && text.ends_with(kEnd)) << text;
    std::istringstream lines(text.substr(kStart.size(), text.size() - kStart.size() - kEnd.size()));
    std::vector<Entry> entries;
    for (std::string line; std::getline(lines, line);) {
      char member[100] = "";
      char size[20] = "";
      char content[20] = "";
      char level[20] = "";
      Entry entry{};
      int end = 0;
      sscanf(line.c_str(),
             R"(  {"member": "%99[^"\]", "size": "%19[0-9x]", "content": "%19[a-z]", )"
             R"("level": "%19[A-Z0-9]", "ns_per_pixel_min": %lf, "ns_per_pixel_median": %lf, )"
             R"("copy_ns_per_pixel": %lf, "ratio_to_copy": %lf}%n)",
             member, size, content, level, &entry.fastest, &entry.median, &entry.copy, &entry.ratio,
             &end);
      EXPECT_EQ(line.substr(static_cast<size_t>(end)), lines.eof() ? "" : ",") << line;
      if (end == 0) continue;
      entry.name = std::string(member) + " " + size + " " + content;
      entry.level = level;
      entries.push_back(entry);
    }
    return entries;
  }
};

TEST_F(BenchTest, FilesHoldWhatWasMeasured) {
  const Outcome outcome =
      qrz("--check bench --size 16x16 5x3 --members '^(invertqrz$|iswhite|picturesepia)' --json " +
          path("out.json") + " --plot " + path("out.svg"));
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  std::set<std::string> names;
  for (const Entry& entry : entriesIn("out.json")) {
    names.insert(entry.name);
    EXPECT_LE(entry.fastest, entry.median) << entry.name;
    EXPECT_GT(entry.fastest, 0) << entry.name;
    EXPECT_NEAR(entry.ratio * entry.copy, entry.median, entry.median * 1e-4) << entry.name;
    EXPECT_THAT(outcome.output, HasSubstr(entry.name.substr(0, entry.name.find(' '))));
  }
  EXPECT_EQ(names, (std::set<std::string>{
                       "InvertQRZ 16x16 photo", "InvertQRZ 16x16 noise", "isWhiteQRZ 16x16 white",
                       "isWhiteQRZ(left, top, width, height) 16x16 white",
                       "PictureSepiaQRZ.Run 16x16 photo", "PictureSepiaQRZ.Run 16x16 noise",
                       "InvertQRZ 5x3 photo", "InvertQRZ 5x3 noise", "isWhiteQRZ 5x3 white",
                       "isWhiteQRZ(left, top, width, height) 5x3 white",
                       "PictureSepiaQRZ.Run 5x3 photo", "PictureSepiaQRZ.Run 5x3 noise"}));
  const std::string plot = read("out.svg");
  EXPECT_THAT(plot, HasSubstr(">isWhiteQRZ(left, top, width, height)</text>"));
  EXPECT_THAT(plot, HasSubstr("prefers-color-scheme: dark"));
  size_t bars = 0;
  for (size_t at = plot.find("<g>"); at != std::string::npos; at = plot.find("<g>", at + 1)) ++bars;
  EXPECT_EQ(bars, names.size());
}

#ifndef __SANITIZE_ADDRESS__  // whose builds have no vector code
/// The highest level that the plug-in has code for.
constexpr auto kHighestLevel = InstructionSet::AVX512;

InstructionSet highestOfCpu() {
  if (__builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
      __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
      __builtin_cpu_supports("avx512vbmi") != 0) {
    return InstructionSet::AVX512;
  }
  if (__builtin_cpu_supports("avx2") != 0) return InstructionSet::AVX2;
  return __builtin_cpu_supports("ssse3") != 0 ? InstructionSet::SSSE3 : InstructionSet::SSE2;
}

TEST_F(BenchTest, LevelIsTheOneThatRuns) {
  static constexpr std::string_view kNames[] = {"SSE2", "SSSE3", "AVX2", "AVX512"};
  const std::pair<const char*, InstructionSet> plugins[] = {
      {"PictureQRZ.so", kHighestLevel},
      {"levels/PictureQRZ-sse2.so", InstructionSet::SSE2},
      {"levels/PictureQRZ-ssse3.so", InstructionSet::SSSE3},
      {"levels/PictureQRZ-avx2.so", InstructionSet::AVX2},
  };
  for (const auto& [plugin, cap] : plugins) {
    // Whatever the file is called.
    std::filesystem::copy_file(std::string(QRZ_BUILD_FOLDER "/") + plugin, path("any.so"),
                               std::filesystem::copy_options::overwrite_existing);
    const Outcome outcome = qrz("bench --size 8x8 --members '^InvertQRZ$' --plugin " +
                                path("any.so") + " --json " + path("out.json"));
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    const auto expected = std::min({highestOfCpu(), cap, kHighestLevel});
    const std::vector<Entry> entries = entriesIn("out.json");
    EXPECT_FALSE(entries.empty());
    for (const Entry& entry : entries) {
      EXPECT_EQ(entry.level, kNames[static_cast<size_t>(expected)]) << plugin;
    }
  }
}
#endif

TEST_F(BenchTest, EveryMemberIsMeasuredAndDoesItsWork) {
  for (const char* mode : {"gworld", "bitmap"}) {
    const Outcome outcome = qrz("--check bench --size 9x7 --pictures " + std::string(mode));
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, Not(HasSubstr("is not measured"))) << outcome.output;
  }
  const Outcome unknown = qrz("bench --plugin " QRZ_BUILD_FOLDER "/libprobe_plugin.so");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_THAT(unknown.output,
              HasSubstr("\nProbeSum: is not measured; the benchmark has no call for it\n"));
}

// --- Recycling ---------------------------------------------------------------

constexpr int32_t kSide = 401;

Ref<Picture> newPicture(Storage storage, bool blank = true) {
  runtime().settings.blanksNewPictures = blank;
  return Picture::create(storage, kSide, kSide);
}

TEST(StorePool, NewPictureIsWhiteWhateverItsBlockHeld) {
  std::mt19937 random(1);
  std::vector<uint32_t> noise(static_cast<size_t>(kSide) * kSide);
  for (uint32_t& word : noise) word = static_cast<uint32_t>(random());
  for (const Storage storage : {Storage::GWorld, Storage::Context, Storage::Bitmap}) {
    newPicture(storage)->setPixels(noise);
    EXPECT_EQ(newPicture(storage, false)->pixels() == noise, kRecyclesStores);
    EXPECT_EQ(newPicture(storage)->pixels(), std::vector<uint32_t>(noise.size(), 0x00FFFFFF));
  }
  const auto pixels = [](const Ref<Picture>& picture) {
    return standin::pixelsOf(static_cast<GWorldPtr>(picture->store().data()));
  };
  constexpr int32_t kRow = 4 * kSide;
  pixels(newPicture(Storage::GWorld)).base[kRow] = 0x77;
  const auto picture = newPicture(Storage::GWorld);
  EXPECT_EQ(pixels(picture).base[kRow], 0) << "behind the first row";
}

TEST(StorePool, KeepsNoMoreThanItMay) {
  constexpr size_t kSize = size_t{16} << 20;
  constexpr size_t kBlocks = 20;
  const auto makeAll = [] {
    std::vector<StoreBlock> blocks;
    while (blocks.size() < kBlocks) blocks.push_back(newStoreBlock(kSize));
    return blocks;
  };
  for (const StoreBlock& block : makeAll()) block.get()[kSize / 2] = 0x5A;
  size_t kept = 0;
  for (const StoreBlock& block : makeAll()) kept += block.get()[kSize / 2] == 0x5A ? 1 : 0;
  EXPECT_EQ(kept, kRecyclesStores ? kMostKeptBytes / kSize : 0);
}

}  // namespace
}  // namespace host
