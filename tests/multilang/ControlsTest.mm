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

  // The size of the frame doesn't matter: nothing is drawn.
  template <class Control>
  Control* add(Class kind, NSInteger tag, NSString* title, NSView* to = nil) {
    Control* control = [[[kind alloc] initWithFrame:NSMakeRect(0, 0, 80, 24)] autorelease];
    [control setTag:tag];
    [[control cell] setTitle:title];
    [(to != nil ? to : view) addSubview:control];
    return control;
  }
  NSButton* addButton(NSInteger tag, NSString* title, NSView* to = nil) {
    return add<NSButton>([NSButton class], tag, title, to);
  }
  NSTextField* addField(NSInteger tag, NSString* title) {
    return add<NSTextField>([NSTextField class], tag, title);
  }

  NSView* view;
};

TEST_F(Controls, AreRelabelledByTheirTags) {
  zot_test::writeFile("english.dat", oneForm(3, {textRecord(5, 1, "not a title"), textRecord(5, 0, "&Save"),
                                                 textRecord(6, 0, "N&ame:"), textRecord(0, 0, "zero"),
                                                 textRecord(0xFFFFFFFF, 0, "minus one")}));
  NSButton* save = addButton(5, @"old");
  NSTextField* name = addField(6, @"old");
  NSButton* unknown = addButton(7, @"R&emove");
  NSButton* untagged = addButton(0, @"O&ne");
  NSButton* negative = addButton(-1, @"T&wo");
  NSBox* box = [[[NSBox alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  [box setTitle:@"Bo&x"];
  [view addSubview:box];
  NSButton* nested = addButton(5, @"Ne&sted", [box contentView]);
  [view addSubview:[[[TaggedView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease]];

  ASSERT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
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
  NSButton* save = addButton(5, @"&Save");
  [texts setTextsForView:view];
  EXPECT_EQ("Save", utf8([save title])) << "before the first load";
  [save setTitle:@"&Again"];
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(3)]);
  [texts setTextsForView:view];
  EXPECT_EQ("Again", utf8([save title]));
  [texts setTextsForView:nil];
}

}  // namespace
