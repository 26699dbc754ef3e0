// zot-lang: makes language files, and looks into them.
#include "tools/common/CommandLine.h"
#include "tools/common/Output.h"
#include "tools/lang/Commands.h"

namespace {

using tool::CommandLine;
using tool::Output;

CLI::Option* addAgainst(CLI::App* command, std::string& reference) {
  return command->add_option("--against", reference, "The texts that are translated")->type_name("REFERENCE");
}

void addBuild(CommandLine& line, lang::BuildOptions& options, Output& errors) {
  CLI::App* const command = line.add("build", "Make language files from catalogues",
                                     "zot-lang build de.po fr.po --base texts -o share/texts",
                                     [&] { return lang::build(options, errors); });
  command->add_option("CATALOGUE", options.catalogues, "Catalogues (.po), or a template (.pot) for English")
      ->type_name("")
      ->required();
  command
      ->add_option("-o,--output", options.output,
                   "The directory for the language files; - is standard output")
      ->type_name("DIR")
      ->required();
  command->add_option("--base", options.base, "Their name without extension; without it the default names")
      ->type_name("NAME");
  command->add_option("--language", options.language, "Number or code, where the catalogues do not tell")
      ->type_name("N|CODE");
  tool::addOrder(command, options.order,
                 "Byte order of the hosts that read the files; without it this host's");
}

void addDump(CommandLine& line, lang::DumpOptions& options, Output& output, Output& errors) {
  CLI::App* const command =
      line.add("dump", "Show the texts of a language file, as a catalogue that 'build' takes",
               "zot-lang dump texts.fr --reference texts.en > fr.po",
               [&] { return lang::dump(options, output, errors); });
  command
      ->add_option("FILE", options.file,
                   "A language file or a catalogue; - is standard input, also when left out")
      ->type_name("");
  command->add_option("--reference", options.reference, "The texts that are translated")->type_name("FILE");
  tool::addOrder(command, options.order, "Byte order of the file; without it the likely one");
  CLI::Option* const table = command->add_flag("--table", options.table, "Print a line a text");
  tool::addJson(command, options.json)->excludes(table);
}

void addCheck(CommandLine& line, lang::CheckOptions& options, Output& output, Output& errors) {
  CLI::App* const command = line.add(
      "check", "Tell what is wrong with language files or catalogues, and where",
      "zot-lang check de.po fr.po --against texts.pot", [&] { return lang::check(options, output, errors); });
  command->add_option("FILE", options.files, "Language files or catalogues; - is standard input")
      ->type_name("")
      ->required();
  addAgainst(command, options.against);
  tool::addOrder(command, options.order, "Byte order that the files must have; without it this host's");
  tool::addJson(command, options.json);
}

void addStats(CommandLine& line, lang::StatsOptions& options, Output& output, Output& errors) {
  CLI::App* const command =
      line.add("stats", "Count the texts translated, missing, and same as the reference",
               "zot-lang stats share/texts.* --against share/texts.en",
               [&] { return lang::stats(options, output, errors); });
  command->add_option("FILE", options.files, "Language files or catalogues")->type_name("")->required();
  addAgainst(command, options.against)->required();
  tool::addJson(command, options.json);
}

void addWhich(CommandLine& line, lang::WhichOptions& options, Output& output) {
  CLI::App* const command = line.add("which", "Tell which file the loader would open, and why",
                                     "zot-lang which share --base texts --language fr",
                                     [&] { return lang::which(options, output); });
  command->add_option("DIR", options.directory, "The directory of the language files")
      ->type_name("")
      ->required();
  CLI::Option* const base =
      command->add_option("--base", options.base, "Their name without extension")->type_name("NAME");
  command->add_option("--name", options.name, "The whole name of the file, as a front end may set it")
      ->type_name("NAME")
      ->excludes(base);
  command
      ->add_option("--language", options.language,
                   "The number of the language, or the code that the user's preferences have first")
      ->type_name("N|CODE")
      ->required();
  tool::addJson(command, options.json);
}

int run(int argc, char** argv) {
  CommandLine line("zot-lang", "Makes language files from gettext catalogues, and looks into them.");
  Output output(stdout);
  Output errors(stderr);
  lang::BuildOptions build;
  lang::DumpOptions dump;
  lang::CheckOptions check;
  lang::StatsOptions stats;
  lang::WhichOptions which;
  addBuild(line, build, errors);
  addDump(line, dump, output, errors);
  addCheck(line, check, output, errors);
  addStats(line, stats, output, errors);
  addWhich(line, which, output);
  return line.run(argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
  return tool::guarded("zot-lang", [&] { return run(argc, argv); });
}
