#include <gtest/gtest.h>

#include "multilang/FoundationTest.h"
#include "support/FailingHeap.h"

// Asks for a text while its number is taken.
@interface AskingNumber : NSObject {
 @public
  ZOTMultiLang* texts;
  NSString* seen;
}
- (unsigned int)unsignedIntValue;
@end

@implementation AskingNumber
- (unsigned int)unsignedIntValue {
  seen = [texts prgTextForSubNr:[NSNumber numberWithInt:0]];
  return 4;
}
@end

namespace {

using zot_test::writeFile;

// The preference of this process alone: nil takes it away.
void prefer(id languages) {
  NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:[NSDictionary dictionaryWithObjectsAndKeys:languages, @"AppleLanguages", nil]
                      forName:NSArgumentDomain];
}

class MultiLang : public FoundationTest {
 protected:
  MultiLang() {
    writeFile("english.dat", oneForm(3, {textRecord(5, 0, "&Save"), textRecord(6, 0, "R&D && more"),
                                         textRecord(6, 1, "one\\nline")}));
    writeFile("french.dat", oneForm(3, {textRecord(5, 0, "&Pr\xE9" "f\xE9rences")}));
  }
  ~MultiLang() override { prefer(nil); }

  // The text of any element.
  std::string shown(int subElement) { return utf8([texts prgTextForSubNr:boxed(subElement)]); }
  std::string shown(int subElement, NSString* def) {
    return utf8([texts prgTextForSubNr:boxed(subElement) withDefault:def]);
  }
  std::string shown(int element, int subElement, NSString* def) {
    return utf8([texts prgTextForElemNr:boxed(element) subElemNr:boxed(subElement) withDefault:def]);
  }
};

TEST_F(MultiLang, KnowsFiveCodesExactlyAndTakesTheFirstWhateverThePreferenceHolds) {
  const struct {
    NSString* code;
    int number;
  } cases[] = {{@"de", 1}, {@"en", 2},    {@"fr", 4}, {@"nl", 10}, {@"pl", 11}, {@"es", 0},
               {@"", 0},   {@"en-GB", 0}, {@"FR", 0}, {@"de ", 0}, {nil, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.number, [[texts zotNumberForLang:c.code] intValue]) << utf8(c.code);
  }
  prefer([NSArray arrayWithObjects:@"fr", @"en", nil]);
  EXPECT_EQ(4, [[texts zotLanguageNumberFromPrefs] intValue]);
  const id english[] = {nil, @"fr", boxed(4), [NSArray array], [NSArray arrayWithObject:boxed(4)],
                        [NSArray arrayWithObjects:@"en-GB", @"fr", nil]};
  for (id odd : english) {
    prefer(odd);
    EXPECT_EQ(0, [[texts zotLanguageNumberFromPrefs] intValue]) << utf8([odd description]);
    EXPECT_TRUE([texts loadTextsForPreferredLanguageWithFilePath:directory formNumber:boxed(3)]);
    EXPECT_EQ("Save", shown(0));
  }
}

TEST_F(MultiLang, LoadsAFormInTheLanguageWanted) {
  prefer([NSArray arrayWithObject:@"fr"]);
  EXPECT_TRUE([texts loadTextsForPreferredLanguageWithFilePath:directory formNumber:boxed(3)]);
  EXPECT_EQ("Préférences", shown(5, 0, nil));
  prefer([NSArray arrayWithObject:@"de"]);
  EXPECT_TRUE([texts loadTextsForPreferredLanguageWithFilePath:directory formNumber:boxed(3) elementNumber:boxed(6)]);
  EXPECT_EQ("5 0 (Text missing)", shown(5, 0, nil));
  EXPECT_EQ("RD  more", shown(0)) << "no German file; every mark goes";

  EXPECT_TRUE([texts loadTextsForLanguageNr:4 withFilePath:directory formNumber:3]);
  EXPECT_EQ("Préférences", shown(0));
  EXPECT_TRUE([texts loadTextsForLanguageNr:boxed(2) withFilePath:directory formNumber:boxed(3) elementNumber:boxed(6)]);
  EXPECT_EQ("one\nline", shown(1));
  EXPECT_EQ("default", shown(5, 0, @"&default"));
  EXPECT_EQ("RD  more", shown(0, @"x")) << "of any element";
}

TEST_F(MultiLang, IsNilWithoutMemoryForItsLoader) {
  const FailingHeap heap;
  EXPECT_EQ(nil, [[ZOTMultiLang alloc] init]);
}

TEST_F(MultiLang, AFailedLoadLeavesTheDefaults) {
  const auto onlyDefaults = [&] {
    EXPECT_EQ("12 (Text missing)", shown(12));
    EXPECT_EQ("3 0 (Text missing)", shown(3, 0, nil));
    EXPECT_EQ("Save as", shown(0, @"Save &as"));
  };
  onlyDefaults();  // before the first load
  [texts setFilePath:directory];
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(4)]);
  onlyDefaults();
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(4) elementNumber:boxed(5)]);
  onlyDefaults();
  [texts setBaseName:@"texts"];
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(3)]);
  writeFile("texts.fr", oneForm(3, {textRecord(5, 0, "enfin")}));
  [texts setLanguage:boxed(4)];
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
  EXPECT_EQ("enfin", shown(0));
}

TEST_F(MultiLang, NumbersAreAskedBeforeTheTextsHeldGo) {
  [texts setFilePath:directory];
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
  AskingNumber* number = [[[AskingNumber alloc] init] autorelease];
  number->texts = texts;
  EXPECT_FALSE([texts loadProgramTextsForFormId:(NSNumber*)number]);
  EXPECT_EQ("Save", utf8(number->seen)) << "an argument that raises leaves them";
}

TEST_F(MultiLang, AChangeOfLanguageReachesTheTextsThatAreLoaded) {
  [texts setFilePath:directory];
  [texts loadProgramTextsForFormId:boxed(3)];
  [texts loadProgramTextsForFormId:boxed(3)];
  EXPECT_EQ("Save", shown(0));
  {
    FailingHeap heap(3);  // the path and one table with one text: the first load's table is gone
    [texts setLanguage:boxed(4)];
  }
  EXPECT_EQ("Préférences", shown(0));
  [texts setLanguage:nil];
  EXPECT_EQ("Save", shown(0));
}

TEST_F(MultiLang, TextsCrossInLatin1OrCountAsNil) {
  NSString* polish = [NSString stringWithUTF8String:"za\u017C\u00F3\u0142\u0107"];
  const unichar zeroInside[] = {'a', 0, 'b'};
  EXPECT_EQ("gr\u00FC\u00DFe \u00FF", shown(1, [NSString stringWithUTF8String:"gr\u00FC\u00DFe \u00FF"]));
  EXPECT_EQ("1 (Text missing)", shown(1, polish));
  EXPECT_EQ("a", shown(1, [NSString stringWithCharacters:zeroInside length:3]));

  // A directory with an 8-bit name is found by its bytes.
  std::filesystem::create_directory("\xE9t\xE9");
  writeFile("\xE9t\xE9/english.dat", oneForm(3, {textRecord(1, 0, "summer")}));
  [texts setFilePath:[NSString stringWithUTF8String:"\u00E9t\u00E9"]];
  [texts setFilePath:polish];
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]) << "the directory stays as it was";
  EXPECT_EQ("summer", shown(0));
}

}  // namespace
