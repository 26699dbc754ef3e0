#import "multilang/ZOTMultiLang.h"

// Only messages are sent to views: no AppKit class is named, so the library runs
// without AppKit where there is no window.
#import <AppKit/NSCell.h>
#import <AppKit/NSControl.h>
#import <AppKit/NSView.h>

#include <new>

#include "multilang/ProgramTexts.h"
#include "multilang/ZOT_MultiLanguage.h"
#import "os/FoundationTextInternal.h"

namespace {

const char* latin1(NSString* text) {
  return zotCString(text, NSISOLatin1StringEncoding);
}

template <class Object>
void keep(Object** kept, Object* given) {
  [given retain];
  [*kept release];
  *kept = given;
}

// The old table goes before the new one is loaded, so that the loader never knows two
// of one object; but after the numbers, since an argument of a wrong class raises.
BOOL replaceTable(ProgramTexts** table, ZOT_MultiLanguage* loader, NSNumber* form, NSNumber* element,
                  signed char onlyElement) {
  const unsigned int formNumber = [form unsignedIntValue];
  const unsigned int elementNumber = [element unsignedIntValue];
  delete *table;
  *table = nullptr;
  *table = loader->loadProgramTexts(formNumber, elementNumber, onlyElement, nullptr);
  if (*table != nullptr) {
    return YES;
  }
  *table = loader->GetDummyProgramTexts();
  return NO;
}

NSString* withoutMarks(NSString* text) {
  return [text stringByReplacingOccurrencesOfString:@"&" withString:@""];
}

NSString* shownText(ProgramTexts& table, NSNumber* element, NSNumber* subElement, signed char useElement,
                    NSString* def) {
  const char* text = table.getPrgTextDefA([element unsignedIntValue], [subElement unsignedIntValue], useElement,
                                          latin1(def), nullptr, 0);
  NSMutableString* marked = [[NSMutableString alloc] initWithCString:text encoding:NSISOLatin1StringEncoding];
  NSString* shown = withoutMarks(marked);
  [marked release];
  return shown;
}

// Before the first load there is no table; a stand-in answers then.
NSString* lookUp(ProgramTexts* table, NSNumber* element, NSNumber* subElement, signed char useElement,
                 NSString* def) {
  if (table != nullptr) {
    return shownText(*table, element, subElement, useElement, def);
  }
  DummyProgramTexts standIn;
  return shownText(standIn, element, subElement, useElement, def);
}

bool hasText(ProgramTexts* table, NSInteger element) {
  static const char none[] = "";
  return table != nullptr &&
         table->getPrgTextDefA(static_cast<unsigned int>(element), 0, 1, none, nullptr, 0) != none;
}

// Views of any kind may have a tag; no cell, or one without a title, is left alone.
NSCell* titledCell(id view) {
  id cell = [view respondsToSelector:@selector(cell)] ? [view cell] : nil;
  const BOOL titled =
      [cell respondsToSelector:@selector(title)] && [cell respondsToSelector:@selector(setTitle:)];
  return titled ? cell : nil;
}

}  // namespace

@implementation ZOTMultiLang

- (id)init {
  self = [super init];
  if (self != nil) {
    ml = new (std::nothrow) ZOT_MultiLanguage();
    if (ml == nullptr) {
      [self release];
      return nil;
    }
  }
  return self;
}

- (void)dealloc {
  delete pt;
  delete ml;
  [filePath release];
  [zotLangNr release];
  [baseName release];
  [super dealloc];
}

- (void)setLanguage:(NSNumber*)languageNumber {
  keep(&zotLangNr, languageNumber);
  ml->SetLanguageId([zotLangNr unsignedIntValue]);
}

- (void)setFilePath:(NSString*)directory {
  keep(&filePath, directory);
  ml->SetLanguageFilePath(latin1(filePath));
}

- (void)setBaseName:(NSString*)name {
  keep(&baseName, name);
  ml->SetLanguageFileBaseName(latin1(baseName));
}

- (NSNumber*)zotLanguageNumberFromPrefs {
  // The preference is the user's to spoil: it may be anything that a property list holds.
  id languages = [[NSUserDefaults standardUserDefaults] objectForKey:@"AppleLanguages"];
  const BOOL hasFirst = [languages isKindOfClass:[NSArray class]] && [languages count] > 0;
  return [self zotNumberForLang:hasFirst ? [languages objectAtIndex:0] : nil];
}

- (NSNumber*)zotNumberForLang:(NSString*)code {
  // isEqual: also takes a first entry that is no string.
  int number = 0;
  if ([@"de" isEqual:code]) {
    number = 1;
  } else if ([@"en" isEqual:code]) {
    number = 2;
  } else if ([@"fr" isEqual:code]) {
    number = 4;
  } else if ([@"nl" isEqual:code]) {
    number = 10;
  } else if ([@"pl" isEqual:code]) {
    number = 11;
  }
  return [NSNumber numberWithInt:number];
}

- (BOOL)loadProgramTextsForFormId:(NSNumber*)form {
  return replaceTable(&pt, ml, form, nil, 0);
}

- (BOOL)loadProgramTextsForFormId:(NSNumber*)form elementNumber:(NSNumber*)element {
  return replaceTable(&pt, ml, form, element, 1);
}

- (BOOL)loadTextsForLanguageNr:(int)languageNumber withFilePath:(NSString*)directory formNumber:(int)form {
  [self setLanguage:[NSNumber numberWithInteger:languageNumber]];
  [self setFilePath:directory];
  return [self loadProgramTextsForFormId:[NSNumber numberWithInteger:form]];
}

- (BOOL)loadTextsForLanguageNr:(NSNumber*)languageNumber
                  withFilePath:(NSString*)directory
                    formNumber:(NSNumber*)form
                 elementNumber:(NSNumber*)element {
  [self setLanguage:languageNumber];
  [self setFilePath:directory];
  return [self loadProgramTextsForFormId:form elementNumber:element];
}

- (BOOL)loadTextsForPreferredLanguageWithFilePath:(NSString*)directory formNumber:(NSNumber*)form {
  [self setFilePath:directory];
  [self setLanguage:[self zotLanguageNumberFromPrefs]];
  return [self loadProgramTextsForFormId:form];
}

- (BOOL)loadTextsForPreferredLanguageWithFilePath:(NSString*)directory
                                       formNumber:(NSNumber*)form
                                    elementNumber:(NSNumber*)element {
  [self setFilePath:directory];
  [self setLanguage:[self zotLanguageNumberFromPrefs]];
  return [self loadProgramTextsForFormId:form elementNumber:element];
}

- (NSString*)prgTextForSubNr:(NSNumber*)subElement {
  return lookUp(pt, nil, subElement, 0, nil);
}

- (NSString*)prgTextForSubNr:(NSNumber*)subElement withDefault:(NSString*)text {
  return lookUp(pt, nil, subElement, 0, text);
}

- (NSString*)prgTextForElemNr:(NSNumber*)element subElemNr:(NSNumber*)subElement withDefault:(NSString*)text {
  return lookUp(pt, element, subElement, 1, text);
}

- (void)setTextsForView:(NSView*)view {
  NSEnumerator* subviews = [[view subviews] objectEnumerator];
  while (id subview = [subviews nextObject]) {
    const NSInteger tag = [subview tag];
    NSCell* cell = tag > 0 ? titledCell(subview) : nil;
    if (cell == nil) {
      continue;
    }
    NSString* title = [cell title];
    NSString* text = [self prgTextForElemNr:[NSNumber numberWithInteger:tag]
                                  subElemNr:[NSNumber numberWithInt:0]
                                withDefault:title];
    // A title that is no default, not being ISO 8859-1, still beats "(Text missing)".
    if (latin1(title) == nullptr && !hasText(pt, tag)) {
      text = withoutMarks(title);
    }
    if (text != nil) {
      [cell setTitle:text];
    }
  }
}

@end
