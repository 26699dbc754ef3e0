// gettext's own programs: only they read catalogues.
#ifndef ZOT_TOOLS_LANG_GETTEXT_H
#define ZOT_TOOLS_LANG_GETTEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace lang {

struct GettextRun {
  bool succeeded = false;
  std::string output;
  std::string messages;  // standard error
};

// Runs a program found in PATH, with `input` as its standard input and no shell between.
// Its memory, time and output are bounded.  Throws tool::Failure when it is not there.
GettextRun runGettext(const std::vector<std::string>& command, std::string_view input);

}  // namespace lang

#endif
