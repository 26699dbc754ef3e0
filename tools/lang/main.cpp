// zot-lang: makes language files, and looks into them.
#include "tools/common/CommandLine.h"
#include "tools/common/Output.h"
#include "tools/lang/Commands.h"

namespace {

void addOrder(CLI::App* command, std::string& order, const std::string& what) {
  command->add_option("--order", order, what)->check(CLI::IsMember({"little", "big"}));
}

CLI::Option* addAgainst(CLI::App* command, std::string& reference) {
  return command->add_option("--against", reference, "The texts that are translated")->type_name("REFERENCE");
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

  lang::CheckOptions check;
  command = line.add("check", "Tell what is wrong with language files or catalogues, and where",
                     "zot-lang check de.po fr.po --against texts.pot",
                     [&] { return lang::check(check, output, errors); });
  command->add_option("FILE", check.files, "Language files or catalogues; - is standard input")
      ->type_name("...")
      ->required();
  addAgainst(command, check.against);
  addOrder(command, check.order, "Byte order that the files must have; without it this host's");
  tool::addJson(command, check.json);

  lang::StatsOptions stats;
  command = line.add("stats", "Count the texts translated, missing, and same as the reference",
                     "zot-lang stats share/texts.* --against share/texts.en",
                     [&] { return lang::stats(stats, output, errors); });
  command->add_option("FILE", stats.files, "Language files or catalogues")->type_name("...")->required();
  addAgainst(command, stats.against)->required();
  tool::addJson(command, stats.json);

  lang::WhichOptions which;
  command =
      line.add("which", "Tell which file the loader would open, and why",
               "zot-lang which share --base texts --language fr", [&] { return lang::which(which, output); });
  command->add_option("DIR", which.directory, "The directory of the language files")
      ->type_name("")
      ->required();
  CLI::Option* base =
      command->add_option("--base", which.base, "Their name without extension")->type_name("NAME");
  command->add_option("--name", which.name, "The whole name of the file, as a front end may set it")
      ->type_name("NAME")
      ->excludes(base);
  command
      ->add_option("--language", which.language,
                   "The number of the language, or the code that the user's preferences have first")
      ->type_name("N|CODE")
      ->required();
  tool::addJson(command, which.json);

  return line.run(argc, argv);
}
