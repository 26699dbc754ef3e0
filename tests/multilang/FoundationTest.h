// What tests of ZOTMultiLang share: a directory of their own that the object reads,
// an autorelease pool, and comparable texts.  For Objective-C++ sources.
#ifndef FOUNDATION_TEST_H
#define FOUNDATION_TEST_H

#import <Foundation/Foundation.h>

#include <string>

#include "multilang/LanguageFileBytes.h"
#import "multilang/ZOTMultiLang.h"
#include "support/TemporaryDirectory.h"

class FoundationTest : public zot_test::TemporaryDirectory {
 protected:
  ~FoundationTest() override {
    [texts release];
    [pool release];
  }

  static std::string utf8(NSString* text) { return text != nil ? [text UTF8String] : "nil"; }
  static NSNumber* boxed(int number) { return [NSNumber numberWithInt:number]; }

  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  NSString* directory = [NSString stringWithUTF8String:whole().c_str()];
  ZOTMultiLang* texts = [[ZOTMultiLang alloc] init];
};

#endif
