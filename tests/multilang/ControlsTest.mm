// Runs under a display; the build starts one where there is none.
#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include "multilang/FoundationTest.h"

// A view with a tag and no cell.
@interface TaggedView : NSView
@end

@implementation TaggedView
- (NSInteger)tag {
  return 5;
}
@end

// Its cell is no NSCell and has no title.
@interface UntitledView : TaggedView
@end

@implementation UntitledView
- (id)cell {
  return [NSNull null];
}
@end

namespace {

// Adds a control of this class; frames don't matter, since nothing is drawn.
id add(NSView* view, Class kind, NSInteger tag, NSString* title) {
  NSControl* control = [[[kind alloc] initWithFrame:NSMakeRect(0, 0, 80, 24)] autorelease];
  [control setTag:tag];
  [[control cell] setTitle:title];
  [view addSubview:control];
  return control;
}

class Controls : public FoundationTest {
 protected:
  static void SetUpTestSuite() { [NSApplication sharedApplication]; }
};

TEST_F(Controls, AreRelabelledByTheirTags) {
  NSView* view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)] autorelease];
  NSBox* box = [[[NSBox alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  [box setTitle:@"Bo&x"];
  [view addSubview:box];
  [view addSubview:[[[TaggedView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease]];
  [view addSubview:[[[UntitledView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease]];
  NSString* const polish = [NSString stringWithUTF8String:"&Wy\u015Blij"];
  NSButton* sent = add(view, [NSButton class], 5, polish);
  NSButton* send = add(view, [NSButton class], 9, polish);
  NSButton* save = add(view, [NSButton class], 5, @"&Old");
  NSTextField* name = add(view, [NSTextField class], 6, @"O&ld");
  NSButton* unknown = add(view, [NSButton class], 7, @"R&emove");
  NSButton* untagged = add(view, [NSButton class], 0, @"O&ne");
  NSButton* negative = add(view, [NSButton class], -1, @"T&wo");
  NSButton* nested = add([box contentView], [NSButton class], 5, @"Ne&sted");

  [texts setTextsForView:view];
  EXPECT_EQ("Old", utf8([save title])) << "before the first load";
  zot_test::writeFile("english.dat", oneForm(3, {textRecord(5, 1, "not a title"), textRecord(5, 0, "&Save"),
                                                 textRecord(6, 0, "N&ame:"), textRecord(0, 0, "zero"),
                                                 textRecord(0xFFFFFFFF, 0, "minus one")}));
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
  [texts setTextsForView:view];
  EXPECT_EQ("Save", utf8([save title]));
  EXPECT_EQ("Save", utf8([sent title]));
  EXPECT_EQ("Wy\u015Blij", utf8([send title])) << "not in ISO 8859-1 and not in the file";
  EXPECT_EQ("Name:", utf8([name stringValue]));
  EXPECT_EQ("Remove", utf8([unknown title])) << "its own title without the mark";
  EXPECT_EQ("O&ne", utf8([untagged title]));
  EXPECT_EQ("T&wo", utf8([negative title]));
  EXPECT_EQ("Bo&x", utf8([box title]));
  EXPECT_EQ("Ne&sted", utf8([nested title]));
}

}  // namespace
