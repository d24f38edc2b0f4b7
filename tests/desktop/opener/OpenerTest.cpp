#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>

#include "desktop/opener/Opener.h"
#include "tests/desktop/opener/RecordingOpener.h"

namespace kestrelon::desktop {
namespace {

TEST(Opener, StartsTheProgramDetachedWithOneArgument) {
  const RecordingOpener opener("$#|$1|$(readlink /proc/self/fd/0)|$(readlink /proc/self/fd/2)");
  EXPECT_TRUE(HasOpener());
  const std::string target = "/tmp/a letter; $(touch x) 'é'.docx";
  EXPECT_EQ(OpenForUser(target), OpenOutcome::kStarted);
  EXPECT_EQ(opener.Next(), "1|" + target + "|/dev/null|/dev/null");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child was left behind";
  EXPECT_EQ(errno, ECHILD);
  const RecordingOpener session("$(cut -d ' ' -f 6 /proc/self/stat)");
  EXPECT_EQ(OpenForUser("/tmp/x"), OpenOutcome::kStarted);
  EXPECT_NE(session.Next(), std::to_string(getsid(0)));
}

TEST(Opener, RunsAProgramAndWaitsForItsEnd) {
  const RecordingOpener opener("$#");
  EXPECT_TRUE(RunForUser(opener.program(), {}, 10'000));
  EXPECT_EQ(opener.Next(), "0");
  EXPECT_TRUE(RunForUser(opener.program(), {"a; b", ""}, 10'000));
  EXPECT_EQ(opener.Next(), "2");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child was left behind";
  EXPECT_FALSE(RunForUser("/nonexistent/program", {}, 10'000));
  EXPECT_FALSE(RunForUser("", {}, 10'000));
  // One that goes on is left alone.
  const PrivateFolder folder("kestrelon-opener-test-");
  const std::string script = folder.path() / "stays";
  const std::string pipe = folder.path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  WriteFileAtomically(script, "#!/bin/sh\nread line < " + pipe + "\n");
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  ASSERT_TRUE(RunForUser(script, {}, 0));
  // It waits for its line still: opening its pipe to write finds a reader.
  const int end = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(write(end, "\n", 1), 1);
  close(end);
}

TEST(Opener, SaysWhenThereIsNothingToStart) {
  const ChangedEnvironment no_display("DISPLAY", "");
  const ChangedEnvironment no_wayland("WAYLAND_DISPLAY", "");
  {
    const ChangedEnvironment none("KESTRELON_OPENER", "");
    EXPECT_FALSE(HasOpener());
    EXPECT_EQ(OpenForUser("/tmp/x"), OpenOutcome::kNoOpener);
  }
  const ChangedEnvironment missing("KESTRELON_OPENER", "/nonexistent/viewer");
  EXPECT_EQ(OpenForUser("/tmp/x"), OpenOutcome::kCannotStart);
  const PrivateFolder folder("kestrelon-opener-test-");
  WriteFileAtomically(folder.path() / "viewer", "no program");
  std::filesystem::permissions(folder.path() / "viewer", std::filesystem::perms::owner_all);
  const ChangedEnvironment broken("KESTRELON_OPENER", (folder.path() / "viewer").string());
  EXPECT_EQ(OpenForUser("/tmp/x"), OpenOutcome::kCannotStart);
}

TEST(Opener, FallsBackToTheDesktopsOwnOnlyWithADisplay) {
  const RecordingOpener opener;
  const PrivateFolder programs("kestrelon-opener-test-");
  std::filesystem::copy(opener.program(), programs.path() / "xdg-open");
  const ChangedEnvironment none("KESTRELON_OPENER", "");
  const ChangedEnvironment path("PATH", "/nonexistent::" + programs.path().string());
  const ChangedEnvironment no_wayland("WAYLAND_DISPLAY", "");
  {
    const ChangedEnvironment no_display("DISPLAY", "");
    EXPECT_EQ(OpenForUser("/tmp/x"), OpenOutcome::kNoOpener);
  }
  const ChangedEnvironment display("DISPLAY", ":7");
  EXPECT_EQ(OpenForUser("/tmp/x"), OpenOutcome::kStarted);
  EXPECT_EQ(opener.Next(), "/tmp/x");
}

}  // namespace
}  // namespace kestrelon::desktop
