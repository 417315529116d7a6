// qrz when something is wrong: with what it is given, where it writes, how much there is of
// stack, memory and disk; and when it is interrupted.

#include <elf.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <vector>

#include "host/files/file_bytes.h"
#include "tests/support/command.h"

namespace host {
namespace {

std::string repeated(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

/// A shell's command, and how it is to end.
struct Fault {
  const char* command;
  int status;
  std::string line;
};

class CliFaultsTest : public FolderTest {
 protected:
  void SetUp() override {
    FolderTest::SetUp();
    ASSERT_EQ(inFolder("mkdir dir; mkfifo pipe; touch empty; ln -s made.png link.png; "
                       "ln -s none/x.png lost.png; ln -s /dev/full full.png")
                  .status,
              0);
    write("loop.rbs", "While True\nWend\n");
    write("print.rbs", "While True\nPrint 1\nWend\n");
    write("save.rbs", "Dim m As New MemoryBlock(100000)\nm.Save(\"out.bin\")\n");
  }
  [[nodiscard]] Outcome inFolder(const std::string& command) const {
    return runCommand("cd " + folder + " && export PATH=" QRZ_BUILD_FOLDER ":$PATH && { " +
                      command + "; }");
  }
  /// Expects one line, or a script's error: the line, and two that show the place. No crash has
  /// either, nor leaves it a part of a file.
  void expect(const Fault& fault) const {
    const Outcome outcome = inFolder(fault.command);
    EXPECT_EQ(outcome.status, fault.status) << fault.command << '\n' << outcome.output;
    EXPECT_EQ(firstLine(outcome.output), fault.line) << fault.command;
    const auto lines = std::ranges::count(outcome.output, '\n');
    EXPECT_TRUE(lines <= 1 || (lines == 3 && outcome.output.ends_with("^\n"))) << outcome.output;
    EXPECT_EQ(parts(), "") << fault.command;
  }
  /// Files that are not complete.
  [[nodiscard]] std::string parts() const {
    return inFolder("find . -name '.picture*' -o -name '*.part'").output;
  }
};

TEST_F(CliFaultsTest, WrongUsage) {
  const std::string help = "; `qrz --help` shows the usage";
  const std::string size = "qrz: --size is width x height in pixels, such as 640x480, not '";
  const std::string version = "qrz: --host-version is a number such as 2010.029" + help;
  const std::string command =
      "qrz: name a command: apply, view, run, members, gallery, manual, bench, completion or man" +
      help;
  const Fault faults[] = {
      {"qrz", 2, command},
      {"qrz bogus", 2, command},
      {"qrz --bogus members", 2, "qrz: The following argument was not expected: --bogus" + help},
      {"qrz members a b", 2, "qrz: The following argument was not expected: b" + help},
      {"qrz --pictures tape members", 2,
       "qrz: --pictures is gworld, context or bitmap, not 'tape'" + help},
      {"qrz --host-version nan members", 2, version},
      {"qrz --host-version=-1 members", 2, version},
      {"qrz apply", 2, "qrz: expression is required" + help},
      {"qrz apply self", 2, "qrz: the expression uses self; name a picture file behind it"},
      {"qrz apply self - -", 2, "qrz: standard input holds one picture; name - once"},
      {"qrz apply self sample:colors empty -o -", 2,
       "qrz: standard output takes one picture; name one file, or a folder with -o"},
      {"script -qec 'qrz apply self sample:colors -o -' /dev/null", 2,
       "qrz: no picture file is written to a terminal; redirect it, or show the picture with "
       "`| qrz view -`\r"},
      {"qrz apply self sample:colors --jobs 65", 2,
       "qrz: --jobs is a number from 1 to 64, not '65'" + help},
      {"qrz apply self sample:colors --jobs 1x", 2,
       "qrz: --jobs is a number from 1 to 64, not '1x'" + help},
      {"qrz apply ' ' sample:colors", 2, "qrz: the expression is empty" + help},
      {"qrz apply self sample:colors -o", 2, "qrz: --output: 1 required FILE missing" + help},
      {"qrz run", 2, "qrz: script is required" + help},
      {"qrz gallery", 2, "qrz: folder is required" + help},
      {"qrz bench --size nanxnan", 2, size + "nanxnan'" + help},
      {"qrz bench --size 12", 2, size + "12'" + help},
      {"qrz bench --size 0x5", 2, size + "0x5'" + help},
      {"qrz bench --size 5x5x5", 2, size + "5x5x5'" + help},
      {"qrz bench --members $(printf %99999s | tr ' ' '(')", 2,
       "qrz: --members is a regular expression of at most 1000 characters" + help},
      {"qrz bench --members Nothing", 1, "no member that is measured matches 'Nothing'"},
      {"qrz apply self sample:colors -o none", 2,
       "none: unknown picture format; use .png, .jpg, .bmp, .tga or .pict"},
      {"qrz apply self sample:colors -o ''", 2,
       "sample:colors: the result is a picture; name its file with -o"},
  };
  for (const Fault& fault : faults) expect(fault);
}

TEST_F(CliFaultsTest, FilesThatCannotBeRead) {
  const std::string missing =
      ": cannot be read: No such file or directory; check the name and the permissions";
  const std::string noPlugin = ": there is no plug-in; build it or name one with --plugin";
  const std::string odd =
      "\"$(printf "
      "'a\\nb\\033[31m\\302\\233c\\233\\303d\\303\\244\\355\\240\\200\\360\\237\\230\\200')\"";
  const std::string shown = "a?b?[31m??c??d\303\244???\360\237\230\200";
  const auto oddly = [&odd](std::string text) {
    return "qrz " + text.replace(text.find('%'), 1, odd);
  };
  const std::string samples = oddly("apply self sample:%");
  const std::string script = oddly("run %");
  const std::string plugin = oddly("--plugin % members");
  const std::string member = oddly("members %");
  const std::string option = oddly("members --%");
  const Fault faults[] = {
      {"qrz apply self none.png", 1, "none.png" + missing},
      {"qrz apply self ''", 1, missing},
      {"qrz apply self dir", 1, "dir: is a folder; give the name of a file"},
      {"qrz apply self empty", 1,
       "empty: is no picture that can be read; use PNG, JPEG, BMP, GIF, TGA, PNM or PICT"},
      {"qrz apply self sample:colors@99999x99999 -o x.png", 1,
       "sample:colors@99999x99999: a picture of 99999 x 99999 pixels is too large; at most 128 "
       "megapixels and 1000000 pixels a side are possible, make it smaller"},
      {"qrz run none", 1, "none" + missing},
      {"qrz run dir", 1, "dir: is a folder; give the name of a file"},
      {"qrz run /dev/zero", 1, "/dev/zero: the file is too large; at most 16 MB are read"},
      {"qrz run empty", 0, ""},
      {"qrz --plugin none members", 1, "qrz: none" + noPlugin},
      {"qrz --plugin pipe members", 1, "qrz: pipe" + noPlugin},
      {"qrz --plugin /dev/zero members", 1, "qrz: /dev/zero" + noPlugin},
      {"qrz --plugin empty members", 1,
       "qrz: empty: is no plug-in: neither an ELF image nor a Mach-O bundle"},
      // Names that would act on the terminal.
      {samples.c_str(), 1,
       "sample:" + shown +
           ": no such sample picture; there are landscape, gradients, colors, greys, edges, alpha"},
      {script.c_str(), 1, shown + missing},
      {plugin.c_str(), 1, "qrz: " + shown + noPlugin},
      {"qrz members x", 1, "no member or class is named 'x'; `qrz members` lists all"},
      {member.c_str(), 1, "no member or class is named '" + shown + "'; `qrz members` lists all"},
      {option.c_str(), 2,
       "qrz: The following argument was not expected: --" + shown +
           "; `qrz --help` shows the usage"},
  };
  for (const Fault& fault : faults) expect(fault);
}

/// What the program headers say is wrong, one by one, and the like in the dynamic section.
TEST_F(CliFaultsTest, DamagedPlugins) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "some of the damage does no harm to an image with sanitizers";
#endif
  const std::vector<uint8_t> whole = readFile(QRZ_BUILD_FOLDER "/PictureQRZ.so");
  Elf32_Ehdr header{};
  memcpy(&header, whole.data(), sizeof header);
  std::vector<size_t> places;
  for (size_t i = 0; i < header.e_phnum; ++i) {
    Elf32_Phdr segment{};
    const size_t at = header.e_phoff + i * sizeof segment;
    memcpy(&segment, whole.data() + at, sizeof segment);
    places.push_back(at + offsetof(Elf32_Phdr, p_vaddr));
    if (segment.p_type != PT_DYNAMIC) continue;
    for (size_t entry = 0; entry < segment.p_filesz; entry += sizeof(Elf32_Dyn)) {
      places.push_back(segment.p_offset + entry + offsetof(Elf32_Dyn, d_un));
    }
  }
  int damaged = 0;
  for (const size_t place : places) {
    std::vector<uint8_t> bytes = whole;
    bytes[place + 3] ^= 0x40;
    writeFile(path("bad.so"), bytes);
    const Outcome outcome = inFolder("qrz --plugin bad.so members");
    if (outcome.status == 0) continue;
    EXPECT_EQ(outcome.status, 1) << place;
    EXPECT_EQ(std::ranges::count(outcome.output, '\n'), 1) << outcome.output;
    if (outcome.output == "qrz: bad.so: is damaged; build or copy it again\n") ++damaged;
  }
  EXPECT_GE(damaged, 5);
}

TEST_F(CliFaultsTest, FilesThatCannotBeWritten) {
  const std::string room = "; choose another folder or make room";
  const std::string device = ": is a folder or device, no ordinary file; choose another name";
  const Fault faults[] = {
      {"qrz apply self sample:colors -o /proc/x.png", 1,
       "/proc/x.png: cannot be written: No such file or directory" + room},
      {"qrz apply self sample:colors -o empty/x.png", 1,
       "empty/x.png: cannot be written: Not a directory" + room},
      {"qrz apply self sample:colors -o empty/", 1, "empty/: cannot make this folder: File exists"},
      {"qrz apply self sample:colors -o full.png", 1, "full.png" + device},
      {"qrz apply self sample:colors -o lost.png", 1,
       "lost.png: cannot be written: No such file or directory" + room},
      {"qrz gallery empty/x", 1, "empty/x: cannot make this folder; name another one"},
      {"qrz bench --members '^Invert' --size 8x8 --json pipe", 1, "pipe" + device},
      // A limit on the size of files is like a full disk.
      {"ulimit -f 1; qrz apply self sample:colors -o x.bmp", 1,
       "x.bmp: cannot be written: File too large" + room},
      {"ulimit -f 1; qrz gallery new", 1,
       "new/pictures/landscape.jpg: cannot be written: File too large" + room},
      {"ulimit -f 1; qrz run save.rbs", 1,
       "save.rbs:2:3: uncaught IOException: out.bin: cannot be written: File too large" + room},
  };
  for (const Fault& fault : faults) expect(fault);
  EXPECT_EQ(inFolder("ls dir new x.bmp x.png out.bin 2>/dev/null").output, "dir:\n");
  // The old file stays.
  EXPECT_EQ(inFolder("echo old >x.bmp; ulimit -f 1; qrz apply self sample:colors -o x.bmp "
                     "2>/dev/null; cat x.bmp")
                .output,
            "old\n");
  // A link goes on pointing to its file, which it is that is written and keeps its permissions.
  expect({"touch made.png; chmod 640 made.png; qrz apply self sample:colors -o link.png", 0, ""});
  expect({"qrz apply self.InvertQRZ link.png -o made.png", 0, ""});
  EXPECT_EQ(inFolder("stat -c %a made.png").output, "640\n");
  EXPECT_EQ(inFolder("test -L link.png && test ! -L made.png && qrz apply "
                     "'self.Width' link.png")
                .output,
            "link.png: 480\n");
}

TEST_F(CliFaultsTest, StandardStreams) {
  const std::string full = "standard output cannot be written";
  const Fault faults[] = {
      {"qrz members >/dev/full", 1, full},
      {"qrz members >&-", 1, full},
      {"qrz apply self sample:colors -o - >/dev/full", 1, full},
      {"qrz apply self sample:colors -o - >&-", 1, full},
      {"qrz apply self.Width sample:colors sample:greys --jobs 2 >/dev/full", 1, full},
      {"(qrz apply self sample:landscape -o -; echo $? >st) | head -c 4; exit $(cat st)", 141,
       "\211PNG"},
      {"qrz apply self - <&-", 1,
       "standard input: is no picture that can be read; use PNG, JPEG, BMP, GIF, TGA, PNM or PICT"},
      {"qrz run print.rbs >/dev/full", 1, "print.rbs:2:1: what is printed cannot be written"},
      {"(trap '' PIPE; qrz run print.rbs; echo $? >st) | head -1; exit $(cat st)", 141, "1"},
      {"(qrz run print.rbs; echo $? >st) | head -1; exit $(cat st)", 141, "1"},
      // What is opened first must not get the place of a stream, and messages.
      {"qrz apply self none.png <&- >&- 2>&-", 1, ""},
      {"qrz run save.rbs <&- >&- 2>&- && cmp -n 100000 out.bin /dev/zero", 0, ""},
  };
  for (const Fault& fault : faults) expect(fault);
  write("own.rbs",
        "For i As Integer = 0 To 2 Step 2\n"
        "Print MemoryBlock.Open(\"/proc/self/fd/\" + Str(i)).Size\nNext\n");
  EXPECT_EQ(inFolder("qrz run own.rbs <&- 2>&-").output, "0\n0\n");
}

TEST_F(CliFaultsTest, DeepNestingOnASmallStack) {
  constexpr int kDeep = 100'000;
  write("recursion",
        "Function F(n As Integer) As Integer\nReturn F(n)\nEnd Function\nPrint F(1)\n");
  for (const char* kilobytes : {"1024", "256"}) {
    const std::string limit = "ulimit -s " + std::string(kilobytes);
    const Outcome recursion = inFolder(limit + "; qrz run recursion");
    EXPECT_EQ(recursion.status, 1);
    EXPECT_NE(recursion.output.find(
                  ": uncaught StackOverflowException: the calls of functions nest too deeply\n"),
              std::string::npos)
        << recursion.output;
    expect({(limit + "; qrz apply self.InvertQRZ.Width sample:colors@5x5").c_str(), 0,
            "sample:colors@5x5: 5"});
  }
  const std::string sources[] = {
      "Print " + repeated("(", kDeep) + "1",
      "Print 1" + repeated(" + 1", kDeep),
      "Print " + repeated("-", kDeep) + "1",
      "Print " + repeated("Not ", kDeep) + "True",
      "Print a" + repeated(".b", kDeep),
      "Print " + repeated("f(", kDeep) + "1",
      repeated("If True Then\n", kDeep),
      repeated("If True Then ", kDeep) + "Print 1",
      repeated("For i As Integer = 1 To 2\n", kDeep),
      repeated("Try\n", kDeep),
  };
  for (const std::string& source : sources) {
    write("deep", source);
    const Outcome outcome = inFolder("ulimit -s 1024; qrz run deep");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(firstLine(outcome.output).find(": nested more than 200 levels deep; split"),
              std::string::npos)
        << outcome.output;
    EXPECT_LT(outcome.output.size(), 700U);
  }
  const std::string fine[] = {
      "If False Then\n" + repeated("ElseIf False Then\n", kDeep) + "End If\nPrint 7",
      "Print " + repeated("_\n", kDeep) + "7",
      "Print " + repeated("(", 150) + "7" + repeated(")", 150),
  };
  for (const std::string& source : fine) {
    write("deep", source);
    EXPECT_EQ(inFolder("ulimit -s 1024; qrz run deep").output, "7\n");
  }
}

TEST_F(CliFaultsTest, TooLittleMemory) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "sanitizers end a process that asks for too much memory";
#endif
  write("double.rbs", "Dim s As String = \"x\"\nWhile True\ns = s + s\nWend\n");
  write("caught.rbs",
        "Dim s As String = \"x\"\nTry\nWhile True\ns = s + s\nWend\n"
        "Catch e As OutOfMemoryException\nPrint \"caught\"\nFinally\nPrint \"finally\"\nEnd Try\n");
  write("array.rbs", repeated("For i As Integer = 1 To 2\nDim a(9999999) As String\n", 30) +
                         repeated("Next\n", 30));
  write("block.rbs", "Dim m As New MemoryBlock(2147483647)\n");
  write("picture.rbs", "Dim p As New Picture(100000, 100000, 32)\n");
  const std::string lack = ": uncaught OutOfMemoryException: ";
  const Fault faults[] = {
      {"ulimit -v 100000; qrz run double.rbs", 1,
       "double.rbs:3:7" + lack + "there is not enough memory for this"},
      {"ulimit -v 100000; qrz run array.rbs", 1,
       "array.rbs:2:1" + lack + "there is not enough memory for this"},
      {"ulimit -v 100000; qrz run block.rbs", 1,
       "block.rbs:1:14" + lack + "There is no memory for 2147483647 bytes."},
      {"qrz run picture.rbs", 1,
       "picture.rbs:1:14" + lack + "There is no memory for 100000 x 100000 pixels."},
  };
  for (const Fault& fault : faults) expect(fault);
  EXPECT_EQ(inFolder("ulimit -v 100000; qrz run caught.rbs").output, "caught\nfinally\n");
  // Wherever it runs out, the process ends by itself.
  for (int kilobytes = 10'000; kilobytes <= 20'000; kilobytes += 1'000) {
    const Outcome outcome =
        inFolder("ulimit -v " + std::to_string(kilobytes) + "; qrz gallery dir");
    EXPECT_EQ(outcome.status, 1) << kilobytes << '\n' << outcome.output;
    EXPECT_EQ(std::ranges::count(outcome.output, '\n'), 1) << outcome.output;
  }
}

// --- Interrupts --------------------------------------------------------------

TEST_F(CliFaultsTest, InterruptsEndEveryCommand) {
  write("try.rbs",
        "Do\nTry\nDo\nLoop\nCatch e As RuntimeException\nFinally\nPrint 1\nEnd Try\nLoop\n");
  write("text.rbs",
        "Do\nDim s As String = \"x\"\nTry\nDo\ns = s + \"abc\"\nLoop\nCatch\nEnd Try\nLoop\n");
  write("recursion.rbs", "Sub F()\nTry\nF\nCatch\nF\nEnd Try\nEnd Sub\nF\n");
  struct Case {
    const char* arguments;
    int signal;
    const char* said;  ///< because of the interrupt
  };
  const Case cases[] = {
      {"run loop.rbs", SIGINT, "loop.rbs:1:1: interrupted\nWhile True\n^\n"},
      {"run loop.rbs", SIGTERM, "loop.rbs:1:1: interrupted\nWhile True\n^\n"},
      {"run loop.rbs", SIGHUP, "loop.rbs:1:1: interrupted\nWhile True\n^\n"},
      {"run try.rbs", SIGINT, ": interrupted\nDo\n^\n"},
      {"run text.rbs", SIGINT, ": interrupted\n"},
      {"run recursion.rbs", SIGINT, ": interrupted\n"},
      {"run pipe", SIGINT, "qrz: interrupted\n"},
      {"apply self pipe", SIGINT, "qrz: interrupted\n"},
      {"apply self sample:landscape@900x900 -o x.png", SIGINT, "qrz: interrupted\n"},
      {"gallery dir", SIGTERM, "qrz: interrupted\n"},
      {"bench --size 9x9 --json x.json --plot x.svg", SIGINT, "qrz: interrupted\n"},
  };
  // At first the plug-in is being loaded: the interrupt comes before anything waits.
  for (const int moments : {0, 50}) {
    for (const Case& each : cases) {
      Session session(folder, each.arguments);
      session.waitFor("", moments);
      session.send(each.signal);
      const Outcome outcome = session.end();
      EXPECT_EQ(outcome.status, 128 + each.signal) << each.arguments;
      EXPECT_NE(outcome.output.find(each.said), std::string::npos) << each.arguments << '\n'
                                                                   << outcome.output;
    }
  }
  EXPECT_EQ(inFolder("ls dir x.png x.json x.svg 2>/dev/null").output, "dir:\n");
  EXPECT_EQ(parts(), "");
}

TEST_F(CliFaultsTest, InterruptWipesTheProgress) {
  Session session(folder, "apply self" + repeated(" sample:landscape@1000x1000", 30) +
                              " $(seq -f sample:colors@%gx50 9999) -o dir");
  session.waitFor("] ");
  session.send(SIGINT);
  const Outcome outcome = session.end();
  EXPECT_EQ(outcome.status, 128 + SIGINT);
  const size_t last = outcome.output.find("\r\033[Kqrz: interrupted; ");
  ASSERT_NE(last, std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find(" of 10029 done", last), std::string::npos) << outcome.output;
  EXPECT_TRUE(session.isTerminalAsBefore());
  EXPECT_EQ(parts(), "");
}

TEST_F(CliFaultsTest, SecondInterruptEndsAtOnceAndLeavesNoParts) {
  write("save.rbs", "Dim m As New MemoryBlock(20000000)\nDo\nm.Save(\"out.bin\")\nLoop\n");
  for (int i = 0; i < 3; ++i) {
    Session session(folder, "run save.rbs");
    session.waitFor("");
    session.send(SIGTERM);
    session.send(SIGINT);
    const int status = session.end().status;
    EXPECT_TRUE(status == 128 + SIGINT || status == 128 + SIGTERM) << status;
    EXPECT_EQ(parts(), "");
  }
  // Nothing polls while such a picture is drawn.
  Session session(folder, "apply self.Width sample:landscape@10000x10000");
  session.waitFor("");
  session.send(SIGINT);
  session.send(SIGTERM);
  EXPECT_EQ(session.end().output, "");
}

}  // namespace
}  // namespace host
