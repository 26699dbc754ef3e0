#include <fmt/format.h>

#include "tools/common/Report.h"
#include "tools/common/Text.h"
#include "tools/mif/Commands.h"

namespace mif {

std::vector<tool::Finding> fieldFindings(const Message& message, const Fields& fields) {
  std::vector<tool::Finding> findings;
  message.eachPart([&](const Part& part) {
    const Field* const field = part.type == Part::Type::Record ? fields.find(part.oid) : nullptr;
    if (field != nullptr && part.missing == 0 && !fits(field->kind, part.value.size())) {
      findings.push_back(
          {fmt::format("{} (OID {}) has {}, {} has {}", field->name, part.oid,
                       tool::counted(part.value.size(), "byte"), nameOf(field->kind), lengthsOf(field->kind)),
           part.offset});
    }
  });
  return findings;
}

tool::Exit check(const CheckOptions& options, tool::Output& output, tool::Output& errors) {
  const Fields fields = readFields(options.input.fields);
  tool::Report report(output, options.json);
  bool trouble = false;
  for (const std::string& file : options.files) {
    try {
      const Message message = readMessage(file, options.input);
      for (const tool::Finding& finding : fieldFindings(message, fields)) {
        report.add(file, finding);
      }
      if (const auto fault = message.fault()) {
        report.add(file, *fault);
      }
    } catch (const tool::Failure& failure) {  // the other files are still looked at
      output.flush();
      errors.print("{}\n", failure.what());
      trouble = true;
    }
  }
  const tool::Exit result = report.finish();
  return trouble ? tool::Exit::Trouble : result;
}

}  // namespace mif
