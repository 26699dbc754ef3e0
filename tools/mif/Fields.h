// Names and kinds of a program's OIDs, from a text file: "OID name kind" lines; blank
// lines and those that begin with '#' do not count.
#ifndef ZOT_TOOLS_MIF_FIELDS_H
#define ZOT_TOOLS_MIF_FIELDS_H

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tools/common/Files.h"
#include "tools/mif/Kinds.h"

namespace mif {

struct Field {
  std::string name;
  Kind kind;
};

class Fields {
 public:
  Fields() = default;

  // Throws tool::FailureAt for a line that says something else.
  explicit Fields(tool::Input& file);

  const Field* find(unsigned short oid) const;
  std::optional<unsigned short> oidOf(std::string_view name) const;
  bool empty() const { return fields_.empty(); }
  size_t longestName() const;

 private:
  std::map<unsigned short, Field> fields_;
};

// An OID as a number, or by its name in the fields.  0xFFFF is none.
std::optional<unsigned short> oidFrom(std::string_view text, const Fields& fields);

}  // namespace mif

#endif
