// qrz apply in pipes, and on many pictures at once.

#include <csignal>

#include "host/files/image_file.h"
#include "tests/support/command.h"

namespace host {
namespace {

class BatchTest : public FolderTest {
 protected:
  void SetUp() override {
    FolderTest::SetUp();
    ASSERT_EQ(inFolder("mkdir sub; mkfifo pipe pipe2; echo rubbish >bad.png; "
                       "qrz apply self sample:alpha@60x40 -o a.png; "
                       "qrz apply self sample:landscape@50x30 -o b.bmp; "
                       "cp a.png sub/a.png; cp b.bmp sub/bad.png")
                  .output,
              "");
  }
  [[nodiscard]] Outcome inFolder(const std::string& command) const {
    return runCommand("cd " + folder + " && export PATH=" QRZ_BUILD_FOLDER ":$PATH && { " +
                      command + "; }");
  }
  void expect(const std::string& command, int status, const std::string& output) const {
    const Outcome outcome = inFolder(command);
    EXPECT_EQ(outcome.status, status) << command;
    EXPECT_EQ(outcome.output, output) << command;
  }
  [[nodiscard]] std::string parts() const { return inFolder("find . -name '.picture*'").output; }
};

constexpr const char* kRubbish =
    ": is no picture that can be read; use PNG, JPEG, BMP, GIF, TGA, PNM or PICT\n";

TEST_F(BatchTest, PicturesGoThroughPipes) {
  expect("qrz apply self.InvertQRZ - -o - <b.bmp | qrz apply self.InvertQRZ - -o c.png", 0, "");
  EXPECT_EQ(readImage(path("c.png")).pixels, readImage(path("b.bmp")).pixels);
  expect("qrz apply self b.bmp -o b.pict; qrz apply self - -o - <b.pict | cmp - c.png", 0, "");
  // Nothing but the picture goes to standard output.
  expect("qrz apply 'Print 5;self' b.bmp -o - 2>said | cmp - c.png; cat said", 0, "5\n");
  expect("qrz apply self.Width - -o - <a.png", 1,
         "standard input: the result is no picture; leave out `-o -` to print it\n");
  expect("qrz apply self - -o sub/ <a.png; cmp a.png sub/stdin.png", 0, "");
  expect("for j in 1 3; do qrz apply self.Width b.bmp - a.png --jobs $j <a.png; done", 0,
         "b.bmp: 50\nstandard input: 60\na.png: 60\nb.bmp: 50\nstandard input: 60\na.png: 60\n");
  expect("qrz apply self.Width - <bad.png", 1, std::string("standard input") + kRubbish);
  expect("cp b.bmp ./-; qrz apply self.Width ./-", 0, "./-: 50\n");
}

TEST_F(BatchTest, WithoutPictures) {
  expect("qrz apply 'Print 7; 1 + 2'", 0, "7\n3\n");
  expect("qrz apply '\"self\" + Str(2)'", 0, "self2\n");
  expect("qrz apply 'New Picture(3, 2, 32)' -o new.png", 0, "");
  EXPECT_EQ(readImage(path("new.png")).pixels, std::vector<uint32_t>(6, 0xFFFFFF));
  expect("qrz apply 'New Picture(3, 2, 32)'", 2,
         "the result is a picture; name its file with -o\n");
  expect("qrz apply 'New Picture(3, 2, 32)' -o sub", 2,
         "sub: is a folder; name a file in it for the picture\n");
  expect("qrz apply 'Nil'", 1, "the result is nil, so there is no picture to write\n");
  expect("qrz apply 'SELF.Width'", 2,
         "qrz: the expression uses self; name a picture file behind it\n");
}

TEST_F(BatchTest, WhateverTheJobsTheResultsAreTheSame) {
  const std::string files = "a.png none.png sub/a.png bad.png sub/bad.png b.bmp";
  for (const std::string jobs : {"1", "2", "8", "64"}) {
    const std::string run = "qrz --check apply --jobs " + jobs;
    expect(run + " 'Print self.Height;self.Width' " + files + " 2>said; cat said", 0,
           std::string("40\na.png: 60\n40\nsub/a.png: 60\n30\nsub/bad.png: 50\n30\nb.bmp: 50\n"
                       "4 of 6 done, 2 failed:\n"
                       "none.png: cannot be read: No such file or directory; check the name and "
                       "the permissions\nbad.png") +
               kRubbish);
    // The first of two pictures with the same name that can be written is.
    expect("rm -rf out; " + run + " self.InvertQRZ " + files + " -o out", 1,
           std::string("3 of 6 done, 3 failed:\nnone.png: cannot be read: No such file or "
                       "directory; check the name and the permissions\nsub/a.png: another file of "
                       "this name was written to out/a.png already\nbad.png") +
               kRubbish);
    expect("qrz apply self.InvertQRZ sub/bad.png -o c.png; cmp c.png out/bad.png; ls out", 0,
           "a.png\nb.bmp\nbad.png\n");
    expect(run + " self.InvertQRZ a.png b.bmp -o out/", 0, "2 pictures written to out/\n");
    expect(run + " self a.png b.bmp sub/a.png", 2,
           "0 of 3 done, 1 failed:\na.png: the result is a picture; name its file with -o\n");
  }
}

TEST_F(BatchTest, NoResultReplacesAPictureThatIsStillToCome) {
  for (const std::string jobs : {"1", "2"}) {
    expect(
        "printf 'P6 1 1 255 abc' >a.ppm; cp sub/a.png a.png; ln -sfn . here; "
        "qrz apply self.InvertQRZ a.ppm a.png -o here --jobs " +
            jobs,
        1,
        "1 of 2 done, 1 failed:\na.ppm: the result would replace here/a.png, another of the "
        "pictures; choose another folder\n");
    expect("qrz apply self.InvertQRZ sub/a.png -o - | cmp - a.png", 0, "");
  }
}

TEST_F(BatchTest, ASlipInTheExpressionIsSaidOnce) {
  const Outcome outcome = inFolder("qrz apply 'self.InvertQRZ(' a.png b.bmp none.png -o out/");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, inFolder("qrz apply 'self.InvertQRZ(' a.png").output);
}

TEST_F(BatchTest, AFailedProcessFailsItsFileAlone) {
  expect(
      "qrz apply self.Width pipe pipe2 a.png b.bmp sub/a.png --jobs 2 & q=$!; "
      "until test $(pgrep -P $q | wc -l) = 2; do sleep 0.1; done; sleep 0.5; "
      "kill -KILL $(pgrep -P $q); wait $q",
      1,
      "a.png: 60\nb.bmp: 50\nsub/a.png: 60\n3 of 5 done, 2 failed:\n"
      "pipe: the host process ended by signal 9\npipe2: the host process ended by signal 9\n");
  expect("(trap '' CHLD; qrz apply self.Width a.png b.bmp --jobs 2)", 0, "a.png: 60\nb.bmp: 50\n");
#ifndef __SANITIZE_ADDRESS__  // whose checks open files themselves
  // As many as can be started have to do.
  expect("ulimit -n 8; qrz apply 1 $(yes a.png | head -8) --jobs 8", 0,
         inFolder("yes 'a.png: 1' | head -8").output);
#endif
}

TEST_F(BatchTest, WhatProcessesLeaveAliveIsFound) {
  const Outcome outcome = inFolder("qrz --check --plugin " QRZ_BUILD_FOLDER
                                   "/libprobe_plugin.so apply "
                                   "'self.ProbeForget;self.Width' a.png b.bmp --jobs 2");
  EXPECT_EQ(outcome.status, 1);
  for (const char* size : {"60x40", "50x30"}) {
    EXPECT_NE(
        outcome.output.find("error: in a host process: still alive: Picture " + std::string(size)),
        std::string::npos)
        << outcome.output;
  }
}

TEST_F(BatchTest, NoProcessOutlivesTheFirst) {
  for (const std::string signal : {"TERM", "HUP", "KILL"}) {
    const Outcome outcome = inFolder(
        "qrz apply self.Width pipe pipe2 a.png b.bmp --jobs 2 >said 2>&1 & q=$!; "
        "until test $(pgrep -P $q | wc -l) = 2; do sleep 0.1; done; w=$(pgrep -P $q); "
        "kill -" +
        signal +
        " $q; wait $q 2>/dev/null; sleep 0.3; "
        "for each in $w; do readlink /proc/$each/exe; done; cat said");
    const std::string said = signal == "KILL" ? "" : "qrz: interrupted; 0 of 4 done\n";
    EXPECT_EQ(outcome.output, said) << signal;
  }
}

TEST_F(BatchTest, ProgressFitsIntoTheTerminal) {
  const std::pair<const char*, const char*> lines[] = {
      {"0", "[##########################..............] 2 of 3, 1 failed\r\033[K"},
      {"30", "[######....] 2 of 3, 1 failed\r\033[K"},
      {"20", "2 of 3, 1 failed\r\033[K"},
      {"9", "2 of 3, \r\033[K"}};
  for (const auto& [columns, line] : lines) {
    const Outcome outcome =
        inFolder(std::string("(sleep 1.1; cat a.png) >pipe & script -qec 'stty cols ") + columns +
                 "; qrz apply self.Width bad.png pipe a.png' /dev/null");
    EXPECT_NE(outcome.output.find(std::string("\r") + line), std::string::npos) << columns << '\n'
                                                                                << outcome.output;
  }
}

TEST_F(BatchTest, InterruptSaysHowFarItGot) {
  for (const std::string jobs : {"1", "3"}) {
    Session session(folder,
                    "apply self.InvertQRZ bad.png $(seq -f sample:landscape@%gx900 600 999) "
                    "-o dir --jobs " +
                        jobs);
    session.waitFor(", 1 failed");
    session.send(SIGINT);
    const Outcome outcome = session.end();
    EXPECT_EQ(outcome.status, 128 + SIGINT);
    EXPECT_NE(outcome.output.find("\r\033[Kqrz: interrupted; "), std::string::npos);
    EXPECT_TRUE(
        outcome.output.ends_with(std::string(" of 401 done, 1 failed:\nbad.png") + kRubbish))
        << outcome.output;
    EXPECT_TRUE(session.isTerminalAsBefore());
    EXPECT_EQ(parts(), "");
  }
}

}  // namespace
}  // namespace host
