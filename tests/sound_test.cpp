#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "host/files/file_fault.h"
#include "host/files/sound_file.h"
#include "tests/support/command.h"

namespace host {
namespace {

std::string little(uint64_t number, int bytes) {
  std::string text;
  for (; bytes > 0; --bytes, number >>= 8) text += static_cast<char>(number & 0xFF);
  return text;
}

std::string chunk(const std::string& name, const std::string& contents) {
  return name + little(contents.size(), 4) + contents + std::string(contents.size() % 2, '\0');
}

std::string formatChunk(uint32_t encoding, uint32_t channels, uint32_t bits,
                        const std::string& extension = {}) {
  const uint32_t frame = channels * ((bits + 7) / 8);
  return chunk("fmt ", little(encoding, 2) + little(channels, 2) + little(22050, 4) +
                           little(22050 * frame, 4) + little(frame, 2) + little(bits, 2) +
                           extension);
}

std::string riff(const std::string& chunks) {
  return "RIFF" + little(chunks.size() + 4, 4) + "WAVE" + chunks;
}

std::string wave(uint32_t encoding, uint32_t channels, uint32_t bits, const std::string& data) {
  return riff(formatChunk(encoding, channels, bits) + chunk("data", data));
}

std::vector<int> levels(const std::string& file) {
  const std::vector<uint8_t> bytes(file.begin(), file.end());
  std::vector<int> numbers;
  for (const uint8_t byte : levelPairs(bytes)) numbers.push_back(static_cast<int8_t>(byte));
  return numbers;
}

std::string fault(const std::string& file) {
  try {
    levels(file);
  } catch (const FileFault& problem) {
    return problem.what();
  }
  return "read";
}

template <typename Number>
std::string numbers(std::initializer_list<double> values) {
  std::string text;
  for (const double value : values) {
    const auto number = static_cast<Number>(value);
    text.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  return text;
}

TEST(Sound, EveryEncodingBecomesRoundedLevels) {
  using Levels = std::vector<int>;
  EXPECT_EQ(levels(wave(1, 2, 8, std::string("\x00\x80\x81\xFF", 4))), (Levels{-128, 0, 1, 127}));
  EXPECT_EQ(levels(wave(1, 2, 16, numbers<int16_t>({-32768, 127, 128, -128, 32767, -129}))),
            (Levels{-128, 0, 1, -1, 127, -1}));
  const std::string high = little(0x7FFFFF, 3);
  const std::string low = little(0x800000, 3);
  EXPECT_EQ(levels(wave(1, 2, 24, high + low + little(0x010000, 3) + little(0xFF0000, 3))),
            (Levels{127, -128, 1, -1}));
  EXPECT_EQ(levels(wave(1, 1, 32, numbers<int32_t>({-2147483648.0, 1 << 24, (1 << 23) - 1}))),
            (Levels{-128, -128, 1, 1, 0, 0}));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::initializer_list<double> reals = {-1, 0.5, 1, -1e30, nan, 0.75 / 128};
  EXPECT_EQ(levels(wave(3, 2, 32, numbers<float>(reals))), (Levels{-128, 64, 127, -128, 0, 1}));
  EXPECT_EQ(levels(wave(3, 2, 64, numbers<double>(reals))), (Levels{-128, 64, 127, -128, 0, 1}));
}

TEST(Sound, ChannelsAndChunksInEveryArrangement) {
  using Levels = std::vector<int>;
  const std::string data = std::string("\x81\x82\x83\x84\x85\x86\x87", 7);
  EXPECT_EQ(levels(wave(1, 1, 8, data.substr(0, 2))), (Levels{1, 1, 2, 2}));
  EXPECT_EQ(levels(wave(1, 3, 8, data)), (Levels{1, 2, 4, 5}));  // the seventh byte is no frame
  const std::string extension = little(22, 2) + little(8, 2) + little(4, 4) + little(1, 2) +
                                std::string("\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 14);
  EXPECT_EQ(levels(riff(chunk("LIST", "odd") + formatChunk(0xFFFE, 2, 8, extension) +
                        chunk("data", data.substr(0, 4)) + chunk("id3 ", "tail"))),
            (Levels{1, 2, 3, 4}));
  // A recording that was never finished counts as far as it goes.
  EXPECT_EQ(levels(riff(formatChunk(1, 2, 8) + "data" + little(0xFFFFFFFF, 4) + data)),
            (Levels{1, 2, 3, 4, 5, 6}));
}

TEST(Sound, WhatCannotBeReadIsSaidInOneLine) {
  EXPECT_EQ(fault(wave(2, 2, 4, "....")),
            "WAV of encoding 2 with 4 bits is not supported; save the sound as 16-bit PCM and try "
            "again");
  EXPECT_EQ(fault(wave(3, 2, 16, "....")).substr(0, 35), "WAV of encoding 3 with 16 bits is n");
  const std::string damaged = "the WAV sound is damaged (";
  const std::string advice = "); get an intact copy of the file";
  EXPECT_EQ(fault(riff(chunk("data", "...."))),
            damaged + "it has no format chunk before its samples" + advice);
  EXPECT_EQ(fault(wave(1, 0, 8, "....")), damaged + "its format chunk contradicts itself" + advice);
  // Cut short anywhere: an error up to the samples, then what is there.
  const std::string whole = wave(1, 2, 16, numbers<int16_t>({256, 512, 768, 1024}));
  const size_t start = whole.size() - 8;
  for (size_t size = 12; size < start; ++size) {
    EXPECT_EQ(fault(whole.substr(0, size)), damaged + "the file ends too early" + advice) << size;
  }
  for (size_t size = start; size <= whole.size(); ++size) {
    EXPECT_EQ(levels(whole.substr(0, size)).size(), (size - start) / 4 * 2) << size;
  }
}

TEST(Sound, PeaksAreTheLoudestOfTheirStretch) {
  const auto bytes = [](std::initializer_list<int> levels) {
    std::vector<uint8_t> result;
    for (const int level : levels) result.push_back(static_cast<uint8_t>(level));
    return result;
  };
  const auto pairs = bytes({5, 1, -7, -2, 0, 3, -128, -128, 1, 0});
  EXPECT_EQ(peaksOf(pairs, 1), bytes({-128, 127}));
  EXPECT_EQ(peaksOf(pairs, 2), bytes({-7, 2, -128, 127}));
  EXPECT_EQ(peaksOf(pairs, 5), bytes({-5, 1, -7, 2, 0, 3, -128, 127, -1, 0}));
  EXPECT_EQ(peaksOf(bytes({9, 8, 4, 3, 77}), 3), bytes({-9, 8, -9, 8, -4, 3}));
  EXPECT_EQ(peaksOf(bytes({9}), 3), bytes({}));
}

class SoundFileTest : public FolderTest {
 protected:
  /// What a script with the folder as its argument prints.
  [[nodiscard]] std::string run(const std::string& script) const {
    write("script.rbs", "Dim f As String = Argument(0) + \"/\"\n" + script);
    return qrz("--check run " + path("script.rbs") + " " + folder).output;
  }
};

TEST_F(SoundFileTest, ScriptsReadSoundsAndKeepBytes) {
  write("mono.wav", wave(1, 1, 8, "\x81\x70"));
  write("raw.bin", std::string("\xFF\x01\x00\x80\x7F", 5));
  EXPECT_EQ(
      run(R"(Dim s As MemoryBlock = MemoryBlock.OpenSamples(f + "mono.wav")
Print s.Size, s.Int8Value(0), s.Int8Value(1), s.Int8Value(2), s.Int8Value(3)
Print MemoryBlock.OpenPeaks(f + "mono.wav", 1).UInt16Value(0)
Print MemoryBlock.Open(f + "mono.wav").StringValue(0, 4)
s = MemoryBlock.OpenSamples(f + "raw.bin")
Print s.Size, s.Int8Value(0), s.Byte(0), s.Int16Value(0), s.UInt16Value(2), s.Int8Value(4)
s.UInt32Value(1) = 4294967295.0
Print s.Long(1), s.UInt32Value(1), s.StringValue(0, 5) = Chr(255) + Chr(255) + Chr(255) + Chr(255) + Chr(255)
s.StringValue(1, 3) = "abcd"
s.StringValue(0, 2) = "Z"
s.Save(f + "saved.bin")
Print MemoryBlock.Open(f + "saved.bin").StringValue(0, 4)
Dim d As New MemoryBlock(9)
d.DoubleValue(1) = -2.5
Print d.DoubleValue(1), d.Byte(8)
)"),
      "4 1 1 -16 -16\n4336\nRIFF\n5 -1 255 511 32768 127\n-1 4294967295 True\nZabc\n-2.5 192\n");
}

TEST_F(SoundFileTest, ProblemsAreExceptionsOfOneLine) {
  write("cut.wav", wave(1, 1, 8, "\x81").substr(0, 30));
  const std::string script = R"(Sub Try1(what As Integer)
  Dim b As New MemoryBlock(4)
  Try
    If what = 0 Then b = MemoryBlock.OpenSamples(Argument(0) + "/cut.wav")
    If what = 1 Then b = MemoryBlock.Open(Argument(0) + "/none")
    If what = 2 Then b = MemoryBlock.OpenSamples("sample:none")
    If what = 3 Then b.Save(Argument(0))
    If what = 4 Then Print b.StringValue(2, 3)
    If what = 5 Then Print b.StringValue(0, -1)
    If what = 6 Then b.Long(1) = 1
    If what = 7 Then b.UInt32Value(0) = -1
    If what = 8 Then b = MemoryBlock.OpenPeaks("sample:chord", 0)
    Print "nothing was raised"
  Catch e As RuntimeException
    Print e.Message
  End Try
End Sub
For i As Integer = 0 To 8
  Try1(i)
Next
)";
  EXPECT_EQ(run(script),
            path("cut.wav") +
                ": the WAV sound is damaged (the file ends too early); get an intact copy of the "
                "file\n" +
                path("none") +
                ": cannot be read: No such file or directory; check the name and the permissions\n"
                "sample:none: no such sample sound; there are chord, drums\n" +
                folder +
                ": is a folder or device, no ordinary file; choose another name\n"
                "3 bytes from byte 2 on are not in a block of 4 bytes.\n"
                "A string cannot have fewer than 0 bytes.\n"
                "4 bytes from byte 1 on are not in a block of 4 bytes.\n"
                "UInt32Value takes 0 to 4294967295.\n"
                "OpenPeaks takes a count above 0.\n");
}

}  // namespace
}  // namespace host
