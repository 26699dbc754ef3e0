#include <fmt/format.h>

#include "tools/common/Report.h"
#include "tools/common/Text.h"
#include "tools/mif/Commands.h"

namespace mif {

namespace {

struct Wanted {
  unsigned short oid;
  uint32_t occurrence;
};

Wanted parse(const std::string& text, const Fields& fields) {
  const size_t slash = text.rfind('/');
  const auto oid = oidFrom(text.substr(0, slash), fields);
  const auto occurrence = slash == text.npos ? 1 : tool::numberFrom(text.substr(slash + 1), UINT32_MAX);
  if (!oid || !occurrence || *occurrence == 0) {
    throw tool::Failure(
        fmt::format("'{}' is not OID[/OCCURRENCE]; an OID is a number of 0 to 65534, or a name with "
                    "--fields, and occurrences count from 1",
                    tool::visible(text)));
  }
  return {*oid, static_cast<uint32_t>(*occurrence)};
}

}  // namespace

tool::Exit get(const GetOptions& options, tool::Output& output, tool::Output& errors) {
  const Wanted wanted = parse(options.record, readFields(options.input.fields));
  const Message message = readMessage(options.file, options.input);
  const auto record = message.find(wanted.oid, wanted.occurrence);
  if (record && record->missing == 0) {
    output.write({reinterpret_cast<const char*>(record->value.data()), record->value.size()});
    return tool::Exit::Done;
  }
  const std::string name = fmt::format("OID {}/{}", wanted.oid, wanted.occurrence);
  const tool::Finding why =
      record ? tool::Finding{fmt::format("the value of {} is cut: {} of {} bytes are there", name,
                                         record->value.size(), record->length()),
                             record->offset}
             : tool::Finding{fmt::format("no record {}", name)};
  errors.write(messageOf(errors, options.file, why));
  return tool::Exit::Findings;
}

}  // namespace mif
