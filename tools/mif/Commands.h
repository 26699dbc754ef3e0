// The subcommands of zot-mif: functions from options and input to what they print.
// All throw tool::Failure where they can't look.
#ifndef ZOT_TOOLS_MIF_COMMANDS_H
#define ZOT_TOOLS_MIF_COMMANDS_H

#include <string>
#include <vector>

#include "tools/common/Failure.h"
#include "tools/common/Output.h"
#include "tools/mif/Fields.h"
#include "tools/mif/Message.h"

namespace mif {

// How files are read.
struct InputOptions {
  std::string from = "raw";  // or "hex"
  std::string order;         // "little" or "big"; empty: the host's
  std::string fields;        // a fields file; empty: none
};

struct DumpOptions {
  std::string file = "-";
  InputOptions input;
  bool hex = false;
  bool reveal = false;
  bool text = false;
  bool json = false;
};

struct BuildOptions {
  std::string file = "-";
  std::string output = "-";
  std::string order;
  std::string fields;
};

struct GetOptions {
  std::string record;  // OID[/OCCURRENCE]
  std::string file = "-";
  InputOptions input;
};

struct DiffOptions {
  std::string first;
  std::string second;
  InputOptions input;
  bool reveal = false;
  bool json = false;
};

struct CheckOptions {
  std::vector<std::string> files;
  InputOptions input;
  bool json = false;
};

Message readMessage(const std::string& file, const InputOptions& options);
Fields readFields(const std::string& file);

// What could not be shown or looked at is told on `errors`, behind what could.
tool::Exit dump(const DumpOptions& options, tool::Output& output, tool::Output& errors);
tool::Exit build(const BuildOptions& options);
tool::Exit get(const GetOptions& options, tool::Output& output, tool::Output& errors);
tool::Exit diff(const DiffOptions& options, tool::Output& output);
tool::Exit check(const CheckOptions& options, tool::Output& output, tool::Output& errors);

}  // namespace mif

#endif
