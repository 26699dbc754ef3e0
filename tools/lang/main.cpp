// zot-lang: makes language files, and looks into them.
#include "tools/common/CommandLine.h"
#include "tools/common/Output.h"
#include "tools/lang/Commands.h"

namespace {

void addOrder(CLI::App* command, std::string& order, const std::string& what) {
  command->add_option("--order", order, what)->check(CLI::IsMember({"little", "big"}));
}

CLI::Option* addOutput(CLI::App* command, std::string& directory) {
  return command
      ->add_option("-o,--output", directory, "The directory for the language files; - is standard output")
      ->type_name("DIR");
}

}  // namespace

int main(int argc, char** argv) {
  tool::CommandLine line("zot-lang", "Makes language files from gettext catalogues, and looks into them.");
  tool::Output output(stdout);
  tool::Output errors(stderr);

  lang::BuildOptions build;
  CLI::App* command = line.add("build", "Make language files from catalogues",
                               "zot-lang build de.po fr.po --base texts -o share/texts",
                               [&] { return lang::build(build, errors); });
  command->add_option("CATALOGUE", build.catalogues, "Catalogues (.po), or a template (.pot) for English")
      ->type_name("...")
      ->required();
  addOutput(command, build.output)->required();
  command->add_option("--base", build.base, "Their name without extension; without it the default names")
      ->type_name("NAME");
  command->add_option("--language", build.language, "Number or code, where the catalogues do not tell")
      ->type_name("N|CODE");
  addOrder(command, build.order, "Byte order of the hosts that read the files; without it this host's");

  lang::DumpOptions dump;
  command = line.add("dump", "Show the texts of a language file, as a catalogue that 'build' takes",
                     "zot-lang dump texts.fr --reference texts.en > fr.po",
                     [&] { return lang::dump(dump, output, errors); });
  command
      ->add_option("FILE", dump.file,
                   "A language file or a catalogue; - is standard input, also when left out")
      ->type_name("");
  command->add_option("--reference", dump.reference, "The texts that are translated")->type_name("FILE");
  addOrder(command, dump.order, "Byte order of the file; without it the likely one");
  CLI::Option* table = command->add_flag("--table", dump.table, "Print a line a text");
  tool::addJson(command, dump.json)->excludes(table);

  return line.run(argc, argv);
}
