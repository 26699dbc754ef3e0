// The two forms in which a message is written down and built again: lines of text,
// and elements of a JSON list.  Each part is one line or one element.
//
// As text:
//
//   order little
//   1 int 90  # interval
//   9 password ******** stored fe 20
//   5 bytes 61 62 missing 3
//   end
//   rest 00 01
//
// As elements:
//
//   {"order":"little"}
//   {"offset":0,"oid":1,"name":"interval","length":4,"kind":"int","value":90}
//   {...,"kind":"password","value":"********","stored":"fe 20"}
//   {...,"kind":"bytes","value":"61 62","missing":3}
//   {"offset":20,"end":true}
//   {"offset":22,"rest":"00 01"}
//
// `stored` has the bytes where the shown value does not give them; `missing` counts
// value bytes that the length promises and the buffer lacks.
#ifndef ZOT_TOOLS_MIF_WRITTEN_H
#define ZOT_TOOLS_MIF_WRITTEN_H

#include <functional>
#include <string>
#include <vector>

#include "tools/common/Files.h"
#include "tools/mif/Message.h"
#include "tools/mif/Reading.h"

namespace mif {

// Prints the lines or elements one after the other.
void writeText(const Message& message, const View& view,
               const std::function<void(const std::string&)>& print);
void writeJson(const Message& message, const View& view, tool::Output& output);

// The bytes that a file in either form stands for; JSON begins with '['.  order: of the
// result, where given; else the file's, else the host's.  Throws tool::FailureAt.
std::vector<unsigned char> bytesWritten(tool::Input& file, std::optional<std::endian> order,
                                        const Fields& fields);

}  // namespace mif

#endif
