#include "tools/common/Report.h"

#include "tools/common/Files.h"
#include "tools/common/JsonList.h"

namespace tool {

struct Report::Elements {
  JsonList list;
};

std::string messageOf(const Output& output, const std::string& file, const Finding& finding) {
  const std::string place = finding.place ? fmt::format("{}:", *finding.place) : std::string();
  return fmt::format("{} {}\n", output.paint(Colour::Bold, fmt::format("{}:{}", shownName(file), place)),
                     finding.text);
}

Report::Report(Output& output, bool json)
    : output_(output), elements_(json ? new Elements{JsonList(output)} : nullptr) {}

Report::~Report() = default;

void Report::add(const std::string& file, const Finding& finding) {
  ++count_;
  if (elements_ == nullptr) {
    output_.write(messageOf(output_, file, finding));
    return;
  }
  Json element = {{"file", shownName(file)}};
  if (finding.place) {
    element[finding.unit == Finding::Unit::Line ? "line" : "offset"] = *finding.place;
  }
  element["text"] = finding.text;
  elements_->list.add(element);
}

void Report::add(const std::string& file, const std::vector<Finding>& findings) {
  for (const Finding& finding : findings) {
    add(file, finding);
  }
}

Exit Report::finish() {
  if (elements_ != nullptr) {
    elements_->list.finish();
  }
  return count_ == 0 ? Exit::Done : Exit::Findings;
}

Exit Report::finishWith(const std::vector<std::string>& files, Output& errors,
                        const std::function<std::vector<Finding>(const std::string& file)>& findingsIn) {
  bool trouble = false;
  for (const std::string& file : files) {
    try {
      add(file, findingsIn(file));
    } catch (const Failure& failure) {
      output_.flush();
      errors.print("{}\n", failure.what());
      trouble = true;
    }
  }
  const Exit result = finish();
  return trouble ? Exit::Trouble : result;
}

}  // namespace tool
