// The plug-in on processors other than this machine's, which an emulator stands in for.

#include <gtest/gtest.h>

#include "tests/support/command.h"

namespace host {
namespace {

/// What a program of this build says there; what the emulator says is left out.
std::string emulated(const std::string& processor, const std::string& command) {
  return runCommand("(qemu-i386 -cpu " + processor + " " QRZ_BUILD_FOLDER "/" + command +
                    " 2>&1 | grep -v ^qemu-i386)")
      .output;
}

TEST(ProcessorTest, LevelAndCachesAreKnown) {
  const std::pair<const char*, const char*> processors[] = {
      {"pentium3", "SSE2 no caches"},       {"coreduo", "SSE2 16777216"},
      {"phenom", "SSE2 no caches"},         {"n270", "SSSE3 16777216"},
      {"Nehalem", "SSSE3 16777216"},        {"Haswell,-avx2", "SSSE3 16777216"},
      {"Haswell,-xsave", "SSSE3 16777216"},  // registers that the system does not save
      {"Haswell", "AVX2 16777216"},         {"EPYC", "AVX2 8388608"},
  };
  for (const auto& [processor, expected] : processors) {
    EXPECT_EQ(emulated(processor, "processor_probe"), std::string(expected) + "\n") << processor;
  }
}

TEST(ProcessorTest, MembersUseNoInstructionThatIsNotThere) {
  const std::string tests = "plugin_tests --gtest_filter=All/GuardTest.OnlyThePixelsAreWritten/";
  for (const char* processor : {"coreduo", "n270", "Haswell"}) {
    for (const char* pictures : {"GWorld", "Bitmap"}) {
      const std::string said = emulated(processor, tests + pictures);
      EXPECT_NE(said.find("[  PASSED  ] 1 test."), std::string::npos) << processor << ":\n" << said;
    }
  }
}

}  // namespace
}  // namespace host
