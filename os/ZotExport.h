// Marks what the shared library exports; everything else in it is hidden.  ZOT_LOCAL
// takes a member out of an exported class.
#ifndef ZOT_EXPORT_H
#define ZOT_EXPORT_H

#define ZOT_EXPORT __attribute__((visibility("default")))
#define ZOT_LOCAL __attribute__((visibility("hidden")))

#endif
