// zot-mif: looks into buffers of records, and makes them.
#include "tools/common/CommandLine.h"
#include "tools/common/Output.h"
#include "tools/mif/Commands.h"

namespace {

using tool::CommandLine;
using tool::Output;

void addOrder(CLI::App* command, std::string& order) {
  tool::addOrder(command, order, "Byte order of the numbers; without it this host's");
}

void addFields(CLI::App* command, std::string& fields) {
  command->add_option("--fields", fields, "Names and kinds of the OIDs: \"OID name kind\" lines")
      ->type_name("FILE");
}

void addInput(CLI::App* command, mif::InputOptions& options) {
  command->add_option("--from", options.from, "What the input is: the bytes, or their hexadecimal digits")
      ->check(CLI::IsMember({"raw", "hex"}));
  addOrder(command, options.order);
  addFields(command, options.fields);
}

void addFile(CLI::App* command, std::string& file) {
  command->add_option("FILE", file, "The file to read; - is standard input, also when left out")
      ->type_name("");
}

void addReveal(CLI::App* command, bool& reveal) {
  command->add_flag("--reveal", reveal, "Show passwords");
}

void addDump(CommandLine& line, mif::DumpOptions& options, Output& output, Output& errors) {
  CLI::App* const command = line.add("dump", "Show every record: offset, OID, length, value",
                                     "zot-mif dump --fields fields.txt message.mif",
                                     [&] { return mif::dump(options, output, errors); });
  addFile(command, options.file);
  addInput(command, options.input);
  command->add_flag("--hex", options.hex, "Also show the bytes of every value");
  addReveal(command, options.reveal);
  command->add_flag("--text", options.text, "Print lines that 'build' reads");
  tool::addJson(command, options.json);
}

void addBuild(CommandLine& line, mif::BuildOptions& options) {
  CLI::App* const command =
      line.add("build", "Make the bytes of what 'dump --text' or 'dump --json' printed",
               "zot-mif build message.txt -o message.mif", [&] { return mif::build(options); });
  addFile(command, options.file);
  command->add_option("-o,--output", options.output, "The file to write; - is standard output")
      ->type_name("FILE");
  addOrder(command, options.order);
  addFields(command, options.fields);
}

void addGet(CommandLine& line, mif::GetOptions& options, Output& output, Output& errors) {
  CLI::App* const command = line.add("get", "Print the bytes of one value", "zot-mif get 3/1 message.mif",
                                     [&] { return mif::get(options, output, errors); });
  command->add_option("OID[/OCCURRENCE]", options.record, "The record; an OID alone is its first")
      ->type_name("")
      ->required();
  addFile(command, options.file);
  addInput(command, options.input);
}

void addDiff(CommandLine& line, mif::DiffOptions& options, Output& output) {
  CLI::App* const command =
      line.add("diff", "Compare two buffers record by record", "zot-mif diff sent.mif received.mif",
               [&] { return mif::diff(options, output); });
  command->add_option("A", options.first, "One file")->type_name("")->required();
  command->add_option("B", options.second, "The other file")->type_name("")->required();
  addInput(command, options.input);
  addReveal(command, options.reveal);
  tool::addJson(command, options.json);
}

void addCheck(CommandLine& line, mif::CheckOptions& options, Output& output, Output& errors) {
  CLI::App* const command = line.add("check", "Tell what is wrong with buffers, and where",
                                     "zot-mif check --fields fields.txt *.mif",
                                     [&] { return mif::check(options, output, errors); });
  command->add_option("FILE", options.files, "The files to read; - is standard input")
      ->type_name("")
      ->required();
  addInput(command, options.input);
  tool::addJson(command, options.json);
}

int run(int argc, char** argv) {
  CommandLine line("zot-mif", "Looks into buffers of MIF records, and makes them.");
  Output output(stdout);
  Output errors(stderr);
  mif::DumpOptions dump;
  mif::BuildOptions build;
  mif::GetOptions get;
  mif::DiffOptions diff;
  mif::CheckOptions check;
  addDump(line, dump, output, errors);
  addBuild(line, build);
  addGet(line, get, output, errors);
  addDiff(line, diff, output);
  addCheck(line, check, output, errors);
  return line.run(argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
  return tool::guarded("zot-mif", [&] { return run(argc, argv); });
}
