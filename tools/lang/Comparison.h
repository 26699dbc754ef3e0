// Texts against those that they translate, in the words of the person who has to mend
// them.
#ifndef ZOT_TOOLS_LANG_COMPARISON_H
#define ZOT_TOOLS_LANG_COMPARISON_H

#include <vector>

#include "tools/lang/Texts.h"

namespace lang {

// Missing and extra places; conversions that differ and accelerators that are lost.
std::vector<tool::Finding> compare(const Texts& texts, const Texts& reference);

// Texts of one form that share an accelerator, unless they do so in the reference.
// reference: may be null.
std::vector<tool::Finding> sharedAccelerators(const Texts& texts, const Texts* reference);

}  // namespace lang

#endif
