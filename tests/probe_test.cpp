// What the host hands to a plug-in and takes back, shown by the probe plug-in.

#include <stdlib.h>

#include "tests/support/command.h"

namespace host {
namespace {

class ProbeTest : public FolderTest {
 protected:
  Outcome run(const std::string& script, const std::string& options = "--check") {
    write("probe.rbs", script);
    return qrz(options + " --plugin " QRZ_BUILD_FOLDER "/libprobe_plugin.so run " +
               path("probe.rbs"));
  }
};

struct Case {
  const char* script;
  const char* output;
};

TEST_F(ProbeTest, ValuesCrossBothWays) {
  for (const auto& [script, output] : {
           Case{"Print ProbeSum(1, 0.25)", "20996.25\n"},
           Case{"Print ProbeSum(1, 2, False, RGB(9, 9, 3), 7)", "30010\n"},
           Case{"Print ProbeSum(-2147483648, 1e10, True, &c000000, 0)", "7852517352\n"},
           Case{"Dim i As Integer = -2147483648\nPrint i, 2147483647, 2147483648",
                "-2147483648 2147483647 2147483648\n"},
           Case{"Print ProbeColor(&c102030), ProbeColor(&cFFFFFF)", "&cEFDFCF &c000000\n"},
           Case{
               "Dim i As Integer = 4\nDim d As Double = 3\nDim m As MemoryBlock\nDim b As Boolean\n"
               "ProbeRefs(i, d, m, b)\nProbeRefs i, d, m, b\n"
               "Print i, d, m.Size, m.Byte(0), b",
               "6 0.75 12 14 False\n"},
           Case{"Dim q As New ProbeQRZ\nPrint q.Size\nq.Half = 1.5\nPrint q.Size, q.Half\n"
                "q.Size = 5\nPrint q.Half",
                "41\n-3 1.5\n5.5\n"},
       }) {
    const Outcome outcome = run(script);
    EXPECT_EQ(outcome.output, output) << script;
    EXPECT_EQ(outcome.status, 0) << script;
  }
}

TEST_F(ProbeTest, WhatWasForgottenIsReported) {
  // The leaks here are meant; a sanitizer need not report them, too.
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
  const std::string forget = "Dim p As New Picture(4, 3, 32)\np.ProbeForget";
  const std::string leak = "still alive: Picture 4x3 (GWorld 32), 1 references\n";
  const Outcome strict = run(forget);
  EXPECT_EQ(strict.status, 1);
  EXPECT_EQ(strict.output, "error: " + leak + "error: 1 GWorlds still allocated\n");
  const Outcome lax = run(forget, "");
  EXPECT_EQ(lax.status, 0);
  EXPECT_EQ(lax.output, "warning: " + leak + "warning: 1 GWorlds still allocated\n");

  const Outcome locked = run("Dim p As New Picture(4, 3, 32)\np.ProbeStayLocked\np.ProbeForget");
  EXPECT_EQ(locked.status, 1);
  EXPECT_EQ(locked.output, "error: " + leak +
                               "error: 1 description locks still held on it\n"
                               "error: 1 pixel maps still locked\n"
                               "error: 1 GWorlds still allocated\n");
  const Outcome freed = run("Dim p As New Picture(4, 3, 32)\np.ProbeStayLocked");
  EXPECT_EQ(freed.status, 1);
  EXPECT_EQ(freed.output, "error: freed while locked: Picture 4x3 (GWorld 32)\n");
}

}  // namespace
}  // namespace host
