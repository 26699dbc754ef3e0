// zot-mif: looks into buffers of records, and makes them.
#include "tools/common/CommandLine.h"
#include "tools/common/Output.h"
#include "tools/mif/Commands.h"

namespace {

using mif::InputOptions;

void addOrder(CLI::App* command, std::string& order) {
  command->add_option("--order", order, "Byte order of the numbers; without it this host's")
      ->check(CLI::IsMember({"little", "big"}));
}

void addFields(CLI::App* command, std::string& fields) {
  command->add_option("--fields", fields, "Names and kinds of the OIDs: \"OID name kind\" lines")
      ->type_name("FILE");
}

void addInput(CLI::App* command, InputOptions& options) {
  command->add_option("--from", options.from, "What the input is: the bytes, or their hexadecimal digits")
      ->check(CLI::IsMember({"raw", "hex"}));
  addOrder(command, options.order);
  addFields(command, options.fields);
}

void addFile(CLI::App* command, std::string& file) {
  command->add_option("FILE", file, "The file to read; - is standard input, also when left out")
      ->type_name("");
}

}  // namespace

int main(int argc, char** argv) {
  tool::CommandLine line("zot-mif", "Looks into buffers of MIF records, and makes them.");
  tool::Output output(stdout);
  tool::Output errors(stderr);

  mif::DumpOptions dump;
  CLI::App* command = line.add("dump", "Show every record: offset, OID, length, value",
                               "zot-mif dump --fields fields.txt message.mif",
                               [&] { return mif::dump(dump, output, errors); });
  addFile(command, dump.file);
  addInput(command, dump.input);
  command->add_flag("--hex", dump.hex, "Also show the bytes of every value");
  command->add_flag("--reveal", dump.reveal, "Show passwords");
  command->add_flag("--text", dump.text, "Print lines that 'build' reads");
  tool::addJson(command, dump.json);

  mif::BuildOptions build;
  command = line.add("build", "Make the bytes of what 'dump --text' or 'dump --json' printed",
                     "zot-mif build message.txt -o message.mif", [&] { return mif::build(build); });
  addFile(command, build.file);
  command->add_option("-o,--output", build.output, "The file to write; - is standard output")
      ->type_name("FILE");
  addOrder(command, build.order);
  addFields(command, build.fields);

  mif::GetOptions get;
  command = line.add("get", "Print the bytes of one value", "zot-mif get 3/1 message.mif",
                     [&] { return mif::get(get, output, errors); });
  command->add_option("OID[/OCCURRENCE]", get.record, "The record; an OID alone is its first")
      ->type_name("")
      ->required();
  addFile(command, get.file);
  addInput(command, get.input);

  mif::DiffOptions diff;
  command = line.add("diff", "Compare two buffers record by record", "zot-mif diff sent.mif received.mif",
                     [&] { return mif::diff(diff, output); });
  command->add_option("A", diff.first, "One file")->type_name("")->required();
  command->add_option("B", diff.second, "The other file")->type_name("")->required();
  addInput(command, diff.input);
  command->add_flag("--reveal", diff.reveal, "Show passwords");
  tool::addJson(command, diff.json);

  mif::CheckOptions check;
  command =
      line.add("check", "Tell what is wrong with buffers, and where",
               "zot-mif check --fields fields.txt *.mif", [&] { return mif::check(check, output, errors); });
  command->add_option("FILE", check.files, "The files to read; - is standard input")
      ->type_name("...")
      ->required();
  addInput(command, check.input);
  tool::addJson(command, check.json);

  return line.run(argc, argv);
}
