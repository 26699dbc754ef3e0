// Runs under a display; the build starts one where there is none.
#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include "multilang/FoundationTest.h"
#include "multilang/LanguageFileBytes.h"

// A view with a tag and no cell.
@interface TaggedView : NSView
@end

@implementation TaggedView
- (NSInteger)tag {
  return 5;
}
@end

namespace {

class Controls : public FoundationTest {
 protected:
  static void SetUpTestSuite() { [NSApplication sharedApplication]; }

  Controls() : view([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]) {
    [texts setFilePath:directory()];
  }
  ~Controls() override { [view release]; }

  // Adds a control of this class; frames don't matter, since nothing is drawn.
  id add(Class kind, NSInteger tag, NSString* title, NSView* to = nil) {
    NSControl* control = [[[kind alloc] initWithFrame:NSMakeRect(0, 0, 80, 24)] autorelease];
    [control setTag:tag];
    [[control cell] setTitle:title];
    [(to != nil ? to : view) addSubview:control];
    return control;
  }

  NSView* view;
};

TEST_F(Controls, AreRelabelledByTheirTags) {
  zot_test::writeFile("english.dat", oneForm(3, {textRecord(5, 1, "not a title"), textRecord(5, 0, "&Save"),
                                                 textRecord(6, 0, "N&ame:"), textRecord(0, 0, "zero"),
                                                 textRecord(0xFFFFFFFF, 0, "minus one")}));
  NSButton* save = add([NSButton class], 5, @"old");
  NSTextField* name = add([NSTextField class], 6, @"old");
  NSButton* unknown = add([NSButton class], 7, @"R&emove");
  NSButton* untagged = add([NSButton class], 0, @"O&ne");
  NSButton* negative = add([NSButton class], -1, @"T&wo");
  NSBox* box = [[[NSBox alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  [box setTitle:@"Bo&x"];
  [view addSubview:box];
  NSButton* nested = add([NSButton class], 5, @"Ne&sted", [box contentView]);
  [view addSubview:[[[TaggedView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease]];

  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
  [texts setTextsForView:view];
  EXPECT_EQ("Save", utf8([save title]));
  EXPECT_EQ("Name:", utf8([name stringValue]));
  EXPECT_EQ("Remove", utf8([unknown title])) << "its own title without the mark";
  EXPECT_EQ("O&ne", utf8([untagged title]));
  EXPECT_EQ("T&wo", utf8([negative title]));
  EXPECT_EQ("Bo&x", utf8([box title]));
  EXPECT_EQ("Ne&sted", utf8([nested title]));

  [texts setTextsForView:[box contentView]];
  EXPECT_EQ("Save", utf8([nested title]));
}

TEST_F(Controls, KeepTheirTitlesWithoutTexts) {
  NSButton* save = add([NSButton class], 5, @"&Save");
  [texts setTextsForView:view];
  EXPECT_EQ("Save", utf8([save title])) << "before the first load";
  [save setTitle:@"&Again"];
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(3)]);
  [texts setTextsForView:view];
  EXPECT_EQ("Again", utf8([save title]));
  [texts setTextsForView:nil];
}

}  // namespace
