#include "os/ZotOsProcess.h"

#include <sys/stat.h>

#include "support/Child.h"
#include "support/LogFixture.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace zot_test;

class Process : public TemporaryDirectory {
 protected:
  Process() {
    setenv("PATH", (whole() + ":" + pathBefore).c_str(), 1);
    script("zotargs", "printf '[%s]' \"$@\" >out");
    script("zotexit", "exit $1");
  }
  ~Process() override { setenv("PATH", pathBefore.c_str(), 1); }

  static void script(const char* path, const std::string& text, mode_t mode = 0700) {
    writeFile(path, "#!/bin/sh\n" + text + "\n");
    chmod(path, mode);
  }

  // Where a command is found with this PATH; empty when it is not, and then its name stands.
  static std::string found(const std::string& path, const std::string& name) {
    setenv("PATH", path.c_str(), 1);
    char buffer[1024] = {};
    name.copy(buffer, sizeof buffer - 1);
    const uint32_t length = ZotOsdGetPath(buffer);
    EXPECT_EQ(length == 0 ? name : std::string(buffer, length), buffer);
    return length == 0 ? "" : buffer;
  }

  // Runs a command line and compares its exit code, its result and its one log line.
  static void expect(const char* line, uint32_t code, const std::string& logged, int32_t flags = 0) {
    SCOPED_TRACE(logged);
    uint32_t exitCode = 77, result = 77;
    EXPECT_EQ(filled(logged + " (IDS)\n"),
              told([&] { result = ZotOsCreateProcessEx(line, flags, &exitCode); }));
    EXPECT_EQ(code == 0 ? 1u : 0u, result);
    EXPECT_EQ(code, exitCode);
  }
  static std::string ran(const std::string& text, uint32_t code) {
    return "TRACE ZotOsCreateProcess: cmd execed: '" + text + "'=" + std::to_string(code);
  }

  const std::string pathBefore = std::getenv("PATH");
};

TEST_F(Process, LooksInSystemDirectoriesThenInPath) {
  std::filesystem::create_directories("b/zotdirectory");
  for (const char* path : {"sh", "zotboth", "b/zotboth", "b/zotlast"}) {
    script(path, "");
  }
  const std::string both = whole() + "::" + whole() + "/b";
  EXPECT_EQ("/bin/sh", found(both, "sh"));
  EXPECT_EQ(whole() + "/zotboth", found(both, "zotboth"));
  EXPECT_EQ(whole() + "/b/zotlast", found(both, "zotlast"));
  EXPECT_EQ(whole() + "/b/zotdirectory", found(both, "zotdirectory"));
  EXPECT_EQ("./absent", found(both, "./absent"));
  EXPECT_EQ("/sbin/", found(both, ""));
  EXPECT_EQ("/usr", found(both, "usr")) << "an empty element is the root directory";
  EXPECT_EQ("/usr", found("/none:", "usr"));
  EXPECT_EQ("/usr", found("", "usr"));
  EXPECT_EQ("", found("", "zotboth")) << "and not the current one";
  EXPECT_EQ("", found("/none", "usr"));
  unsetenv("PATH");
  char name[1024] = "usr";
  EXPECT_EQ(4u, ZotOsdGetPath(name));
  EXPECT_EQ(0u, ZotOsdGetPath(nullptr));
}

TEST_F(Process, FindsByTheOwnersBitAndCutsLongPaths) {
  for (const mode_t mode : {0100u, 0700u, 0677u, 0011u}) {
    script("zott", "", mode);
    EXPECT_EQ((mode & 0100) != 0 ? whole() + "/zott" : "", found(whole(), "zott")) << mode;
  }
  for (const char* path : {"zo", "zot", "zott"}) {
    script(path, "");
  }
  const std::pair<size_t, const char*> cuts[] = {
      {1018, "/zott"}, {1019, "/zot"}, {1020, "/zo"}, {1021, nullptr}};
  for (const auto& [length, name] : cuts) {
    const std::string directory = whole() + std::string(length - whole().size(), '/');
    EXPECT_EQ(name != nullptr ? directory + name : "", found(directory, "zott")) << length;
  }
}

TEST_F(Process, PassesArgumentsAsWritten) {
  const std::string longest(1016, 'x');
  const std::string slashes = "." + std::string(1016, '/') + "zotargs";
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"zotargs \t\n ", "/zotargs", "[]"},
      {"zotargs\t\n  one  two ", "/zotargs one  two ", "[one][two]"},
      {"zotargs 'a  b' \"c\td\" e\\ f", "/zotargs 'a  b' \"c\td\" e\\ f", "[a  b][c\td][e f]"},
      {"zotargs \"${NONE-x y}\"; true", "/zotargs \"${NONE-x y}\"; true", "[x y]"},
      {"  zotargs one", "/zotargs gs one", "[gs][one]"},
      {"zotargs " + longest, "/zotargs " + longest, "[" + longest + "]"},
      {slashes, "", "[]"},
  };
  for (const auto& [line, text, arguments] : cases) {
    expect(line.c_str(), 0, ran(text.empty() ? slashes : whole() + text, 0));
    EXPECT_EQ(arguments, readFile("out")) << line;
  }
}

TEST_F(Process, TellsHowTheCommandEnded) {
  script("zotkill", "kill -9 $1");
  for (const uint32_t code : {0u, 3u, 255u}) {
    const std::string line = "zotexit " + std::to_string(code);
    expect(line.c_str(), code, ran(whole() + "/" + line, code));
  }
  expect("zotkill $$", SIGKILL, ran(whole() + "/zotkill $$", SIGKILL));
  expect("./absent 2>/dev/null", 127, ran("./absent 2>/dev/null", 127));
  // Nobody can learn how a child ended whose end the process ignores.
  std::signal(SIGCHLD, SIG_IGN);
  expect("zotexit 0", UINT32_MAX, ran(whole() + "/zotexit 0", UINT32_MAX));
  std::signal(SIGCHLD, SIG_DFL);
  EXPECT_EQ(1u, ZotOsCreateProcess("zotexit 0"));
  EXPECT_EQ(0u, ZotOsCreateProcessSw("zotexit 1", 0));
  EXPECT_EQ(1u, ZotOsCreateProcessSw("false", ZOT_OS_PROCESS_BACKGROUND));
}

TEST_F(Process, InTheBackgroundGoesOnAfterTheCall) {
  script("zotwait",
         "for i in $(seq 2000); do [ -e go ] && break; sleep 0.01; done; echo end >$1; mv $1 done");
  expect("zotwait part", 0, ran(whole() + "/zotwait part &", 0), 0x10000);
  EXPECT_FALSE(std::filesystem::exists("done")) << "the call waited for the command";
  writeFile("go", "");
  EXPECT_TRUE(waitUntil([] { return readFile("done") == "end\n"; }));
  expect("zotexit 3", 3, ran(whole() + "/zotexit 3", 3), ~0x10000);
}

TEST_F(Process, RefusesWhatItCannotRun) {
  const std::string longLine = "zotargs " + std::string(1017, 'x');
  const std::string longWord(1024, 'x');
  const std::string error = "ERROR ZotOsCreateProcess: ";
  expect(nullptr, UINT32_MAX, error + "command line () is empty");
  expect("", UINT32_MAX, error + "command line () is empty");
  expect(longLine.c_str(), UINT32_MAX, error + "command line (" + longLine + ") is too long");
  expect(longWord.c_str(), UINT32_MAX, error + "command (" + longWord + ") cannot be found");
  expect("zotnone one two", UINT32_MAX, error + "command (zotnone) cannot be found");
  expect(" \t\n", UINT32_MAX, error + "command () cannot be found");
  EXPECT_EQ(0u, ZotOsCreateProcess(nullptr));
}

}  // namespace
