#include <gtest/gtest.h>

#include "multilang/FoundationTest.h"
#include "multilang/LanguageFileBytes.h"
#include "support/FailingHeap.h"

namespace {

using zot_test::writeFile;

// The preference of this process alone: nil takes it away.
void prefer(id languages) {
  NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
  NSDictionary* domain = languages != nil ? [NSDictionary dictionaryWithObject:languages forKey:@"AppleLanguages"]
                                          : [NSDictionary dictionary];
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:domain forName:NSArgumentDomain];
}

class MultiLang : public FoundationTest {
 protected:
  MultiLang() {
    writeFile("english.dat", oneForm(3, {textRecord(5, 0, "&Save"), textRecord(6, 0, "R&D && more"),
                                         textRecord(6, 1, "one\\nline")}));
    writeFile("french.dat", oneForm(3, {textRecord(5, 0, "&Pr\xE9" "f\xE9rences")}));
  }
  ~MultiLang() override { prefer(nil); }
};

TEST_F(MultiLang, KnowsFiveCodesExactly) {
  const struct {
    NSString* code;
    int number;
  } cases[] = {{@"de", 1}, {@"en", 2},    {@"fr", 4}, {@"nl", 10}, {@"pl", 11}, {@"es", 0},
               {@"", 0},   {@"en-GB", 0}, {@"FR", 0}, {@"de ", 0}, {nil, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.number, [[texts zotNumberForLang:c.code] intValue]) << utf8(c.code);
  }
}

TEST_F(MultiLang, TakesTheFirstPreferredLanguageWhateverThePreferenceHolds) {
  prefer([NSArray arrayWithObjects:@"fr", @"en", nil]);
  EXPECT_EQ(4, [[texts zotLanguageNumberFromPrefs] intValue]);
  const id english[] = {nil, @"fr", boxed(4), [NSArray array], [NSArray arrayWithObject:boxed(4)],
                         [NSArray arrayWithObjects:@"en-GB", @"fr", nil]};
  for (id odd : english) {
    prefer(odd);
    EXPECT_EQ(0, [[texts zotLanguageNumberFromPrefs] intValue]) << utf8([odd description]);
    EXPECT_TRUE([texts loadTextsForPreferredLanguageWithFilePath:directory() formNumber:boxed(3)]);
    EXPECT_EQ("Save", utf8([texts prgTextForSubNr:boxed(0)])) << "English";
  }
}

TEST_F(MultiLang, LoadsAFormInTheLanguageWanted) {
  prefer([NSArray arrayWithObject:@"fr"]);
  EXPECT_TRUE([texts loadTextsForPreferredLanguageWithFilePath:directory() formNumber:boxed(3)]);
  EXPECT_EQ("Préférences", utf8([texts prgTextForElemNr:boxed(5) subElemNr:boxed(0) withDefault:nil]));
  prefer([NSArray arrayWithObject:@"de"]);
  EXPECT_TRUE([texts loadTextsForPreferredLanguageWithFilePath:directory() formNumber:boxed(3) elementNumber:boxed(6)]);
  EXPECT_EQ("5 0 (Text missing)", utf8([texts prgTextForElemNr:boxed(5) subElemNr:boxed(0) withDefault:nil]));
  EXPECT_EQ("RD  more", utf8([texts prgTextForSubNr:boxed(0)])) << "no German file; every mark goes";

  EXPECT_TRUE([texts loadTextsForLanguageNr:4 withFilePath:directory() formNumber:3]);
  EXPECT_EQ("Préférences", utf8([texts prgTextForSubNr:boxed(0)]));
  EXPECT_TRUE([texts loadTextsForLanguageNr:boxed(2) withFilePath:directory() formNumber:boxed(3) elementNumber:boxed(6)]);
  EXPECT_EQ("one\nline", utf8([texts prgTextForSubNr:boxed(1)]));
  EXPECT_EQ("default", utf8([texts prgTextForElemNr:boxed(5) subElemNr:boxed(0) withDefault:@"&default"]));
  EXPECT_EQ("RD  more", utf8([texts prgTextForSubNr:boxed(0) withDefault:@"x"])) << "of any element";
  EXPECT_EQ("12 (Text missing)", utf8([texts prgTextForSubNr:boxed(12)]));
}

TEST_F(MultiLang, AFailedLoadLeavesTheDefaults) {
  const auto onlyDefaults = [&] {
    EXPECT_EQ("12 (Text missing)", utf8([texts prgTextForSubNr:boxed(12)]));
    EXPECT_EQ("3 0 (Text missing)", utf8([texts prgTextForElemNr:boxed(3) subElemNr:boxed(0) withDefault:nil]));
    EXPECT_EQ("Save as", utf8([texts prgTextForSubNr:boxed(0) withDefault:@"Save &as"]));
  };
  onlyDefaults();  // before the first load
  [texts setFilePath:directory()];
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(4)]);
  onlyDefaults();
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(4) elementNumber:boxed(5)]);
  onlyDefaults();
  [texts setBaseName:@"english.dat"];
  EXPECT_FALSE([texts loadProgramTextsForFormId:boxed(3)]) << "an extension follows the base name";
  writeFile("texts.fr", oneForm(3, {textRecord(5, 0, "enfin")}));
  [texts setBaseName:@"texts"];
  [texts setLanguage:boxed(4)];
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]);
  EXPECT_EQ("enfin", utf8([texts prgTextForSubNr:boxed(0)]));
}

TEST_F(MultiLang, AChangeOfLanguageReachesTheTextsThatAreLoaded) {
  [texts setFilePath:directory()];
  [texts loadProgramTextsForFormId:boxed(3)];
  [texts loadProgramTextsForFormId:boxed(3)];
  EXPECT_EQ("Save", utf8([texts prgTextForSubNr:boxed(0)]));
  {
    FailingHeap heap(3);  // the path and one table with one text: the first load's table is gone
    [texts setLanguage:boxed(4)];
  }
  EXPECT_EQ("Préférences", utf8([texts prgTextForSubNr:boxed(0)]));
  [texts setLanguage:nil];
  EXPECT_EQ("Save", utf8([texts prgTextForSubNr:boxed(0)]));
}

TEST_F(MultiLang, TextsCrossInLatin1OrCountAsNil) {
  NSString* latin1 = [NSString stringWithUTF8String:"gr\u00FC\u00DFe \u00FF"];
  EXPECT_EQ("gr\u00FC\u00DFe \u00FF", utf8([texts prgTextForSubNr:boxed(1) withDefault:latin1]));
  NSString* polish = [NSString stringWithUTF8String:"za\u017C\u00F3\u0142\u0107"];
  EXPECT_EQ("1 (Text missing)", utf8([texts prgTextForSubNr:boxed(1) withDefault:polish]));
  const unichar zeroInside[] = {'a', 0, 'b'};
  NSString* cut = [NSString stringWithCharacters:zeroInside length:3];
  EXPECT_EQ("a", utf8([texts prgTextForSubNr:boxed(1) withDefault:cut]));

  // A directory with an 8-bit name is found by its bytes.
  std::filesystem::create_directory("\xE9t\xE9");
  writeFile("\xE9t\xE9/english.dat", oneForm(3, {textRecord(1, 0, "summer")}));
  NSString* summer = [NSString stringWithUTF8String:"\u00E9t\u00E9"];
  EXPECT_TRUE([texts loadTextsForLanguageNr:2 withFilePath:summer formNumber:3]);
  EXPECT_EQ("summer", utf8([texts prgTextForSubNr:boxed(0)]));
  [texts setFilePath:polish];
  EXPECT_TRUE([texts loadProgramTextsForFormId:boxed(3)]) << "the directory stays as it was";
}

}  // namespace
