// A dialog in the user's language: the texts come from language files, the controls
// are found by their tags.
//
//   dialog [--language N] [--screenshot FILE.png]
//
// Without --language the first of the user's preferred languages counts; for one run
// it can be given as -AppleLanguages '(fr,en)'.  With --screenshot the window's
// picture is written and the program ends.  Without a display: xvfb-run -a dialog ...
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#import "ConnectWindow.h"
#import "multilang/ZOTMultiLang.h"
#include "os/ZotOsFile.h"

namespace {

struct Options {
  NSNumber* language = nil;
  const char* screenshot = nullptr;
};

Options readOptions(int argc, char** argv) {
  Options options;
  for (int i = 1; i + 1 < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--language") {
      options.language = [NSNumber numberWithInt:std::atoi(argv[++i])];
    } else if (name == "--screenshot") {
      options.screenshot = argv[++i];
    }
  }
  return options;
}

// The language files lie beside the program.  The object takes paths as ISO 8859-1,
// so every byte of this one gets through.
NSString* textDirectory() {
  char path[4096] = "";
  ZotOsGetModulePath(path, sizeof path, nullptr);
  return [NSString stringWithFormat:@"%@/texts", [NSString stringWithCString:path
                                                                    encoding:NSISOLatin1StringEncoding]];
}

bool writePicture(NSWindow* window, const char* path) {
  // A turn of the run loop lets the window appear and draw.
  [[NSRunLoop currentRunLoop] runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.5]];
  NSView* whole = [[window contentView] superview];
  [window display];
  [whole lockFocus];
  NSBitmapImageRep* picture =
      [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[whole bounds]] autorelease];
  [whole unlockFocus];
  NSData* png = [picture representationUsingType:NSPNGFileType properties:[NSDictionary dictionary]];
  return [png writeToFile:[NSString stringWithUTF8String:path] atomically:NO];
}

}  // namespace

int main(int argc, char** argv) {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  const Options options = readOptions(argc, argv);
  if (options.screenshot != nullptr) {
    // There may be no window manager: AppKit draws the title bar, and it is in the picture.
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary dictionaryWithObject:@"NO" forKey:@"GSX11HandlesWindowDecorations"]];
  }
  [NSApplication sharedApplication];

  ZOTMultiLang* texts = [[[ZOTMultiLang alloc] init] autorelease];
  [texts setBaseName:@"dialog"];
  NSNumber* form = [NSNumber numberWithInt:[ConnectWindow formNumber]];
  NSNumber* language = options.language;
  BOOL loaded;
  if (language != nil) {
    loaded = [texts loadTextsForLanguageNr:[language intValue]
                              withFilePath:textDirectory()
                                formNumber:[form intValue]];
  } else {
    language = [texts zotLanguageNumberFromPrefs];
    loaded = [texts loadTextsForPreferredLanguageWithFilePath:textDirectory() formNumber:form];
  }
  if (!loaded) {
    std::fprintf(stderr, "dialog: no texts in %s\n", [textDirectory() UTF8String]);
    return 1;
  }
  ConnectWindow* dialog = [[[ConnectWindow alloc] initWithTexts:texts
                                                 languageNumber:[language intValue]] autorelease];
  [[dialog window] makeKeyAndOrderFront:nil];
  if (options.screenshot == nullptr) {
    [NSApp run];
  } else if (writePicture([dialog window], options.screenshot)) {
    std::printf("%s shows \"%s\"\n", options.screenshot, [[[dialog window] title] UTF8String]);
  } else {
    std::fprintf(stderr, "dialog: cannot write %s\n", options.screenshot);
    return 1;
  }
  [pool release];
  return 0;
}
