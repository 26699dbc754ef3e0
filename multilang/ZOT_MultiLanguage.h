// Finds the language file of the chosen language and fills tables with the texts
// of its forms.  A registry remembers every table, so that a change of language
// reloads them all in place.
//
// Language numbers: 1 German, 2 English, 3 Spanish, 4 French, 5 Italian,
// 6 Swedish, 7 Danish, 8 Norwegian, 9 Finnish, 10 Dutch, 11 Polish.  Any other
// number means 2, and so does a language whose file is missing.
//
// Texts passed in are copied.  The registry has its own lock, always taken before a
// table's, so tables may be destroyed while another thread changes the language.
// Path and language are not locked: set them, and load, from one thread at a time.
// Every failure is a null or 0 result and is not logged; nothing throws.  No call is a
// cancellation point: a thread that is cancelled finishes its load first.
#ifndef ZOT_MULTI_LANGUAGE_H
#define ZOT_MULTI_LANGUAGE_H

#include <stdint.h>
#include <stdio.h>

#include "multilang/LanguageRecords.h"
#include "multilang/ProgramTexts.h"
#include "os/ZotExport.h"

class LanguageFile;
struct ZotOsMutexHandle;

class ZOT_EXPORT ZOT_MultiLanguage {
 public:
  // No path, language 0 (served as English), empty registry.
  ZOT_MultiLanguage();

  // Tables survive and forget the loader.  None may be on its way out in another
  // thread.
  ~ZOT_MultiLanguage();

  // Parts of the language file's path; null is ignored.  Nothing is reloaded.
  void SetLanguageFilePath(const char* directory);
  void SetLanguageFileName(const char* fileName);
  void SetLanguageFileBaseName(const char* baseName);

  // Chooses the language and reloads every registered table; the number that is set
  // already does nothing.
  void SetLanguageId(unsigned int languageNumber);

  // Always 2.
  unsigned int GetOsLanguage();

  // The language file's full path: the directory, then the file name as it was set,
  // or else the base name with the language's extension (".de", ".en", ".es", ".fr",
  // ".it", ".se", ".dk", ".no", ".fi", ".nl", ".pl"), or else a default name
  // ("deutsch.dat", "english.dat", "spain.dat", "french.dat", "italian.dat",
  // "swedish.dat", "danish.dat", "norweg.dat", "finnish.dat", "dutch.dat",
  // "polnisch.dat").  Where that file is missing, English takes its place unseen.
  //
  // The path is built on the first call after a setter and then handed out again,
  // whatever number is passed; callers rely on that.  It stays the loader's own until
  // the next call after a setter.  Null when memory runs out.
  const char* buildFilePathName(unsigned int languageNumber);

  // The language file, open at the first text record of a form, for the caller to
  // close; *formRecord gets the form's record.  Null when formRecord is null
  // or the file or the form in it is missing or damaged; what *formRecord then holds
  // is of no use.
  FILE* openFormId(unsigned int formNumber, tMlForms* formRecord);

  // Reads the text record at the file's position and terminates its text; escapes stay
  // as they are in the file.
  // Returns 1; 0 on damage or at the end of the file, and textRecord is unchanged.
  int readElementText(FILE* file, tMlTexte* textRecord);

  // Turns a text with a length byte in front into a terminated one in place, cut to
  // size - 1 characters.
  void convertDelphiString(char* buffer, unsigned int size);

  // Loads the texts of a form, with onlyElement those of one element only.
  //
  //   table  null for a new table, which is registered and belongs to the caller;
  //          or one to be emptied and filled again under its lock
  //
  // Returns the table.  Null when the file or form is missing (an existing table is
  // unchanged) or the load broke off (it keeps the texts read so far).
  ProgramTexts* loadProgramTexts(unsigned int form, unsigned int element, signed char onlyElement,
                                 ProgramTexts* table);

  // Loads every registered table again; 1 when all came back whole, else 0.
  uint32_t RefreshAllRegisteredChildren();

  // Registers a table of this loader, or one without a parent, whose parent it then
  // becomes.  Does not look whether the table is there already.
  //
  // Returns 1; 0 for null, for a loader whose lock could not be made, and when memory
  // runs out: the registry is then lost and empty, and the tables that were in it have
  // forgotten the loader.
  uint32_t ptListAdd(ProgramTexts* table);

  // Makes every table forget the loader and empties the registry.
  void ptListClear();

  // Takes a table out of the registry, and the table forgets this loader: it is no longer
  // reloaded and may outlive the loader.  A table's destructor calls this.
  void unregisterChild(ProgramTexts* table);

  // A new stand-in table, unregistered, which belongs to the caller.
  DummyProgramTexts* GetDummyProgramTexts();

 private:
  ZOT_MultiLanguage(const ZOT_MultiLanguage&) = delete;
  ZOT_MultiLanguage& operator=(const ZOT_MultiLanguage&) = delete;

  // Whether all the form's text records were read and those that are wanted kept.
  ZOT_LOCAL static bool readTexts(LanguageFile* file, uint32_t textCount, uint32_t element, bool onlyElement,
                                  ProgramTexts* table);

  uint32_t languageId;
  char* directory;
  char* fileName;
  char* baseName;
  char* fullPath;
  char rebuildPath;
  ProgramTexts** registry;
  ZotOsMutexHandle* registryMutex;
  uint32_t registryCapacity;
  int32_t registryCount;
};

#endif
