#import "Checks.h"
#import "Look.h"
#import "ProfileTab.h"
#import "SystemTab.h"
#import "Texts.h"
#import "User.h"
#import "multilang/ZOTMultiLang.h"

namespace {

constexpr int kLanguages[] = {2, 1, 4, 3, 11, 0};  // 0: as the user prefers

NSString* textIn(ZOTMultiLang* texts, NSInteger element, NSInteger subElement) {
  return [texts prgTextForElemNr:[NSNumber numberWithInteger:element]
                       subElemNr:[NSNumber numberWithInteger:subElement]
                     withDefault:@"?"];
}

bool fits(Report& report, int language, NSView* view, NSString* shown, CGFloat needed, CGFloat room) {
  return report.check(needed <= room, "language %d: \"%s\" needs a width of %.0f and has %.0f (element %ld)",
                      language, [shown UTF8String], needed, room, static_cast<long>([view tag]));
}

// Labels, buttons, check boxes and hints; what the user fills may be longer than its field.
void checkFit(Report& report, int language, NSView* parent) {
  NSEnumerator* views = [[parent subviews] objectEnumerator];
  for (NSControl* view; (view = [views nextObject]) != nil;) {
    if (![view isKindOfClass:[NSControl class]] || [[view cell] isBezeled]) {
      continue;
    }
    fits(report, language, view, [[view cell] title], [[view cell] cellSize].width, NSWidth([view frame]));
    report.check(NSContainsRect(NSInsetRect([parent bounds], -1, -1), [view frame]),
                 "language %d: \"%s\" leaves its page", language, [[[view cell] title] UTF8String]);
  }
}

void checkColumns(Report& report, int language, ZOTMultiLang* expected, NSView* page) {
  NSEnumerator* views = [[page subviews] objectEnumerator];
  for (TextTable* view; (view = [views nextObject]) != nil;) {
    if (![view isKindOfClass:[TextTable class]]) {
      continue;
    }
    NSEnumerator* columns = [[view columns] objectEnumerator];
    for (NSTableColumn* column; (column = [columns nextObject]) != nil;) {
      NSString* title = [[column headerCell] stringValue];
      NSString* right = textIn(expected, [[column identifier] integerValue], 0);
      report.check([title isEqual:right], "language %d: a column reads \"%s\" and not \"%s\"", language,
                   [title UTF8String], [right UTF8String]);
      fits(report, language, view, title, [[column headerCell] cellSize].width, [column width]);
    }
  }
}

void checkCells(Report& report, int language, TextTable* table) {
  for (NSUInteger i = 0; i < [[table rows] count]; ++i) {
    NSArray* row = [[table rows] objectAtIndex:i];
    for (NSUInteger j = 0; j < [row count]; ++j) {
      NSTableColumn* column = [[table columns] objectAtIndex:j];
      NSCell* cell = [[[column dataCell] copy] autorelease];
      [cell setStringValue:[row objectAtIndex:j]];
      fits(report, language, table, [cell stringValue], [cell cellSize].width, [column width]);
    }
  }
}

void checkTitles(Report& report, int language, ZOTMultiLang* expected, NSView* parent) {
  NSEnumerator* views = [[parent subviews] objectEnumerator];
  for (NSControl* view; (view = [views nextObject]) != nil;) {
    if ([view tag] > 0 && [view isKindOfClass:[NSControl class]]) {
      NSString* title = [[view cell] title];
      NSString* right = textIn(expected, [view tag], 0);
      report.check([title isEqual:right], "language %d: element %ld reads \"%s\" and not \"%s\"", language,
                   static_cast<long>([view tag]), [title UTF8String], [right UTF8String]);
    }
  }
}

struct Sentences {
  Report* report;
  SettingsWindow* settings;
  ZOTMultiLang* expected;
  int language;
};

// Every text that the program has is in the file, and those that come and go fit where
// they will stand.
void checkSentence(int element, int subElement, void* context) {
  const Sentences& all = *static_cast<const Sentences*>(context);
  NSString* sentence = textIn(all.expected, element, subElement);
  all.report->check(![sentence isEqual:@"?"], "language %d: no text %d/%d", all.language, element,
                    subElement);
  NSTextField* place = element == kOutcomes ? [all.settings status]
                       : element == kFaults ? [[all.settings profileTab] hintOf:kOidName]
                       : subElement == kHint || subElement == kWrongForm
                           ? [[all.settings profileTab] hintOf:kOidName]
                           : nil;
  if (place != nil) {
    NSTextFieldCell* cell = [[[place cell] copy] autorelease];
    [cell setStringValue:sentence];
    fits(*all.report, all.language, place, sentence, [cell cellSize].width, NSWidth([place frame]));
  }
}

void checkTabs(Report& report, int language, ZOTMultiLang* expected, SettingsWindow* settings) {
  for (NSUInteger i = 0; i < [[settings tabs] count]; ++i) {
    TabPage<Tab>* tab = [[settings tabs] objectAtIndex:i];
    NSView* page = [tab view];
    [settings selectTab:i];
    NSString* label = textIn(expected, [tab element], 0);
    report.check([[[[settings tabView] selectedTabViewItem] label] isEqual:label],
                 "language %d: tab %lu is in another language", language, static_cast<unsigned long>(i));
    checkTitles(report, language, expected, page);
    checkFit(report, language, page);
    checkColumns(report, language, expected, page);
  }
  NSControl* beside = [[[settings window] contentView] viewWithTag:kLanguage];
  fits(report, language, [settings tabView], [beside stringValue], widthOfTabs([settings tabView]),
       NSMinX([beside frame]) - NSMinX([[settings tabView] frame]));
  checkCells(report, language, [[settings systemTab] words]);
  checkCells(report, language, [[settings systemTab] slots]);
}

void checkLanguage(Report& report, int language, ZOTMultiLang* expected, SettingsWindow* settings) {
  ProfileTab* profile = [settings profileTab];
  NSView* content = [[settings window] contentView];
  checkTitles(report, language, expected, content);
  checkFit(report, language, content);
  checkTabs(report, language, expected, settings);
  Sentences sentences = {&report, settings, expected, language};
  forEachText(checkSentence, &sentences);
  report.check([[[profile fieldOf:kName] stringValue] isEqual:text(kTyped[kName])],
               "language %d: what was typed is gone", language);
  NSString* hint = textIn(expected, kOidGateway, kHint);
  report.check([[[profile hintOf:kOidGateway] stringValue] isEqual:hint],
               "language %d: a hint is in another language", language);
  NSString* title = textIn(expected, kWindowTitle, 0);
  report.check([[[settings window] title] isEqual:title], "language %d: the window's title", language);
}

// checkFit() itself sees a text that is cut.
void checkCutIsSeen(Report& report, NSView* page) {
  Report cut = {fopen("/dev/null", "w")};
  NSView* label = [page viewWithTag:kOidName];
  const NSRect frame = [label frame];
  [label setFrame:NSMakeRect(NSMinX(frame), NSMinY(frame), NSWidth(frame) - 5, NSHeight(frame))];
  checkFit(cut, 0, page);
  [label setFrame:frame];
  std::fclose(cut.terminal);
  report.check(cut.failures == 1, "a label that is cut goes unnoticed");
}

}  // namespace

void checkLanguages(Report& report, SettingsWindow* settings, NSString* texts) {
  ZOTMultiLang* expected = [[[ZOTMultiLang alloc] init] autorelease];
  [expected setBaseName:@"demo"];
  for (const int language : kLanguages) {
    chooseLanguage(settings, language);
    [[settings window] setContentSize:[[settings window] contentMinSize]];
    const int meant = language != 0 ? language : [[expected zotLanguageNumberFromPrefs] intValue];
    report.check([expected loadTextsForLanguageNr:meant withFilePath:texts formNumber:10],
                 "no language file for %d", meant);
    checkLanguage(report, language, expected, settings);
  }
  checkCutIsSeen(report, [[settings profileTab] view]);
  chooseLanguage(settings, 2);
  [settings selectTab:0];
}
