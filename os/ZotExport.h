// Marks what the shared library exports; everything else in it is hidden.
#ifndef ZOT_EXPORT_H
#define ZOT_EXPORT_H

#define ZOT_EXPORT __attribute__((visibility("default")))

#endif
