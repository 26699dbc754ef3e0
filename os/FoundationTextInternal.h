// Text between Foundation and the plain layers; for Objective-C++ sources only.
#ifndef ZOT_FOUNDATION_TEXT_INTERNAL_H
#define ZOT_FOUNDATION_TEXT_INTERNAL_H

#import <Foundation/Foundation.h>

// The text as a C string that lives as long as the current autorelease pool; an
// embedded zero ends it.  Null for nil and for a text that the encoding cannot
// hold: asked beforehand, since GNUstep raises where Cocoa answers NULL.
inline const char* zotCString(NSString* text, NSStringEncoding encoding) {
  return [text canBeConvertedToEncoding:encoding] ? [text cStringUsingEncoding:encoding] : nullptr;
}

#endif
