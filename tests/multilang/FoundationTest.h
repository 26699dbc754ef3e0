// What tests of ZOTMultiLang share: a directory of their own, an autorelease pool,
// and comparable texts.  For Objective-C++ sources.
#ifndef FOUNDATION_TEST_H
#define FOUNDATION_TEST_H

#import <Foundation/Foundation.h>

#include <string>

#import "multilang/ZOTMultiLang.h"
#include "support/TemporaryDirectory.h"

inline std::string utf8(NSString* text) {
  return text != nil ? [text UTF8String] : "nil";
}

inline NSNumber* boxed(int number) {
  return [NSNumber numberWithInt:number];
}

class FoundationTest : public zot_test::TemporaryDirectory {
 protected:
  FoundationTest() : pool([[NSAutoreleasePool alloc] init]), texts([[ZOTMultiLang alloc] init]) {}
  ~FoundationTest() override {
    [texts release];
    [pool release];
  }

  NSString* directory() const { return [NSString stringWithUTF8String:whole().c_str()]; }

  NSAutoreleasePool* pool;
  ZOTMultiLang* texts;
};

#endif
