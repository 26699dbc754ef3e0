#include <fmt/format.h>

#include <algorithm>

#include "tools/common/ByteOrder.h"
#include "tools/common/Report.h"
#include "tools/lang/Commands.h"
#include "tools/lang/Comparison.h"

namespace lang {

namespace {

using Findings = std::vector<tool::Finding>;

Findings orderFindings(const Texts& texts, std::endian wanted) {
  constexpr uint64_t kFormCountAt = 12;  // the first number in the file
  if (texts.isCatalogue || texts.order.value_or(wanted) == wanted) {
    return {};
  }
  return {{fmt::format("wrong byte order: the file is for {}-endian hosts; build it with --order {}",
                       tool::nameOf(*texts.order), tool::nameOf(wanted)),
           kFormCountAt}};
}

// In the order in which they stand in the file, those without a place first.
Findings findingsIn(const Texts& texts, const Texts* reference, std::endian order) {
  Findings findings = texts.damage;
  const auto add = [&](const Findings& more) { findings.insert(findings.end(), more.begin(), more.end()); };
  add(orderFindings(texts, order));
  if (reference != nullptr) {
    add(compare(texts, *reference));
  }
  add(sharedAccelerators(texts, reference));
  std::stable_sort(findings.begin(), findings.end(),
                   [](const auto& one, const auto& other) { return one.place < other.place; });
  return findings;
}

}  // namespace

tool::Exit check(const CheckOptions& options, tool::Output& output, tool::Output& errors) {
  tool::Report report(output, options.json);
  const bool hasReference = !options.against.empty();
  Texts reference;
  if (hasReference) {
    reference = readTexts(options.against);
    report.add(reference.file, reference.damage);
  }
  const auto order = tool::orderNamed(options.order).value_or(std::endian::native);
  return report.finishWith(options.files, errors, [&](const std::string& file) {
    return findingsIn(readTexts(file), hasReference ? &reference : nullptr, order);
  });
}

}  // namespace lang
