// The texts of a front end's windows in the user's language.
//
// An object holds the texts of the form that it loaded last and puts them on the
// controls of a view.  A text's element number is its control's tag.
//
// Loads answer NO when the language file or the form in it is missing or damaged;
// lookups then serve the defaults, or "(Text missing)" texts.  So they do before the
// first load.  Texts are ISO 8859-1 in the files; a default that cannot be written so
// counts as nil.  Strings returned are autoreleased and carry no "&": the files mark
// keyboard accelerators with it for other platforms.  Nothing raises but an argument
// of a wrong class, which leaves the texts held.  An instance serves one thread at a
// time.
#ifndef ZOT_MULTI_LANG_H
#define ZOT_MULTI_LANG_H

#import <Foundation/Foundation.h>

@class NSView;

#ifdef __cplusplus
class ZOT_MultiLanguage;
class ProgramTexts;
#else
typedef struct ZOT_MultiLanguage ZOT_MultiLanguage;
typedef struct ProgramTexts ProgramTexts;
#endif

@interface ZOTMultiLang : NSObject {
 @private
  ZOT_MultiLanguage* ml;
  ProgramTexts* pt;  // null before the first load
  NSString* filePath;
  NSString* baseName;
  NSNumber* zotLangNr;
}

// No directory, no language (served as English), no texts.
- (id)init;
- (void)dealloc;

// ---- Where the texts come from ----

// Chooses the language: 1 German, 2 English, 3 Spanish, 4 French, 5 Italian,
// 6 Swedish, 7 Danish, 8 Norwegian, 9 Finnish, 10 Dutch, 11 Polish; any other
// number means English.  The texts held are loaded again when the number changes.
- (void)setLanguage:(NSNumber*)languageNumber;

// The language files' directory, and their name without the language's extension.
// Without a base name, files have default names such as "english.dat".  They count
// from the next load or change of language on.  One that is nil or that ISO 8859-1
// cannot hold is ignored: loads then answer from the one set before.
- (void)setFilePath:(NSString*)directory;
- (void)setBaseName:(NSString*)name;

// The number of the first of the user's preferred languages ("AppleLanguages").  0
// when there is no such list: GNUstep itself never sets one, so a front end registers
// a default or asks the user.
- (NSNumber*)zotLanguageNumberFromPrefs;

// "de" 1, "en" 2, "fr" 4, "nl" 10, "pl" 11; everything else, such as "en-GB", 0.
- (NSNumber*)zotNumberForLang:(NSString*)code;

// ---- Loading ----

// Replaces the texts held by those of a form, or of one of its elements.
- (BOOL)loadProgramTextsForFormId:(NSNumber*)form;
- (BOOL)loadProgramTextsForFormId:(NSNumber*)form elementNumber:(NSNumber*)element;

// The same after setting language and directory.
- (BOOL)loadTextsForLanguageNr:(int)languageNumber withFilePath:(NSString*)directory formNumber:(int)form;
- (BOOL)loadTextsForLanguageNr:(NSNumber*)languageNumber
                  withFilePath:(NSString*)directory
                    formNumber:(NSNumber*)form
                 elementNumber:(NSNumber*)element;

// The same after setting directory and the user's preferred language.
- (BOOL)loadTextsForPreferredLanguageWithFilePath:(NSString*)directory formNumber:(NSNumber*)form;
- (BOOL)loadTextsForPreferredLanguageWithFilePath:(NSString*)directory
                                       formNumber:(NSNumber*)form
                                    elementNumber:(NSNumber*)element;

// ---- Texts ----

// The first text with this sub-element number, whatever its element.  A missing one
// is the default, or reads like "12 (Text missing)".
- (NSString*)prgTextForSubNr:(NSNumber*)subElement;
- (NSString*)prgTextForSubNr:(NSNumber*)subElement withDefault:(NSString*)text;

// The text with this element and sub-element number.
- (NSString*)prgTextForElemNr:(NSNumber*)element subElemNr:(NSNumber*)subElement withDefault:(NSString*)text;

// Sets the title of every direct subview whose tag is above 0 to the text of that
// element, sub-element 0.  One without a text keeps its title, less any "&".  A field
// that the user fills needs tag 0, or what was typed counts as its title.
- (void)setTextsForView:(NSView*)view;

@end

#endif
