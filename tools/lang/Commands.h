// The subcommands of zot-lang: functions from options to what they print.  All throw
// tool::Failure where they can't look.
#ifndef ZOT_TOOLS_LANG_COMMANDS_H
#define ZOT_TOOLS_LANG_COMMANDS_H

#include <string>
#include <vector>

#include "tools/common/Failure.h"
#include "tools/common/Output.h"

namespace lang {

struct BuildOptions {
  std::vector<std::string> catalogues;
  std::string output;    // a directory, or "-"
  std::string base;      // name without extension; empty: default names
  std::string language;  // number or code; empty: as the catalogues say
  std::string order;     // "little", "big"; empty: as the catalogues say, or this host's
};

struct DumpOptions {
  std::string file = "-";
  std::string reference;
  std::string order;
  bool table = false;
  bool json = false;
};

struct CheckOptions {
  std::vector<std::string> files;
  std::string against;
  std::string order;
  bool json = false;
};

struct WhichOptions {
  std::string directory;
  std::string base;
  std::string name;      // of the file itself
  std::string language;  // a number, or a code as preferences have them
  bool json = false;
};

struct StatsOptions {
  std::vector<std::string> files;
  std::string against;
  bool json = false;
};

// What keeps a file from being built is told on `errors`; then none is written.
tool::Exit build(const BuildOptions& options, tool::Output& errors);

// What the listing, or a file built of it, lacks is told on `errors`.
tool::Exit dump(const DumpOptions& options, tool::Output& output, tool::Output& errors);

tool::Exit check(const CheckOptions& options, tool::Output& output, tool::Output& errors);
tool::Exit which(const WhichOptions& options, tool::Output& output);
tool::Exit stats(const StatsOptions& options, tool::Output& output, tool::Output& errors);

}  // namespace lang

#endif
