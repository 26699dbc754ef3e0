#include "tools/common/ByteOrder.h"
#include "tools/common/Files.h"
#include "tools/mif/Commands.h"
#include "tools/mif/Written.h"

namespace mif {

tool::Exit build(const BuildOptions& options) {
  const Fields fields = readFields(options.fields);
  tool::Input input(options.file);
  const auto order = tool::orderNamed(options.order);
  const std::vector<unsigned char> bytes = bytesWritten(input, order, fields);
  tool::writeWhole(options.output, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  return tool::Exit::Done;
}

}  // namespace mif
