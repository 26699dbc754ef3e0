#include <fmt/format.h>

#include "tools/common/Report.h"
#include "tools/common/Text.h"
#include "tools/mif/Commands.h"

namespace mif {

namespace {

// Lengths that the fields' kinds do not have, and then what is wrong with the message itself.
std::vector<tool::Finding> findingsIn(const Message& message, const Fields& fields) {
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
  if (const auto fault = message.fault()) {
    findings.push_back(*fault);
  }
  return findings;
}

}  // namespace

tool::Exit check(const CheckOptions& options, tool::Output& output, tool::Output& errors) {
  const Fields fields = readFields(options.input.fields);
  tool::Report report(output, options.json);
  return report.finishWith(options.files, errors, [&](const std::string& file) {
    return findingsIn(readMessage(file, options.input), fields);
  });
}

}  // namespace mif
