// Findings: printed one a line as a compiler does, or as a JSON list.
#ifndef ZOT_TOOLS_REPORT_H
#define ZOT_TOOLS_REPORT_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/Failure.h"
#include "tools/common/Output.h"

namespace tool {

// What is wrong, and where: at an offset in bytes from 0, or in a line from 1.
struct Finding {
  enum class Unit { Offset, Line };

  std::string text;  // for people, without file and place
  std::optional<uint64_t> place = std::nullopt;
  Unit unit = Unit::Offset;
};

// "FILE:PLACE: text" in the colours of the output.
std::string messageOf(const Output& output, const std::string& file, const Finding& finding);

// Prints findings as they come.
class Report {
 public:
  Report(Output& output, bool json);
  ~Report();

  // file: as the user wrote it, "-" for standard input.
  void add(const std::string& file, const Finding& finding);
  void add(const std::string& file, const std::vector<Finding>& findings);

  // Ends a JSON list.  Exit::Findings when there were some.
  Exit finish();

  // Adds what findingsIn() has found in each file, and finishes.  Where it throws Failure, that
  // is told on errors, the other files are still looked at, and the result is Exit::Trouble.
  Exit finishWith(const std::vector<std::string>& files, Output& errors,
                  const std::function<std::vector<Finding>(const std::string& file)>& findingsIn);

 private:
  struct Elements;

  Output& output_;
  std::unique_ptr<Elements> elements_;  // null for plain text
  uint64_t count_ = 0;
};

}  // namespace tool

#endif
