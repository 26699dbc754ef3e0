// The client's settings window.
//
// kUsage below tells how it is called.  DIR is where the service runs (default: demo-profile in the current directory).
// Without --language the first of the user's preferred languages counts.  With
// --screenshot the window's picture is written and the program ends.  With --selftest
// it drives its own controls, with a service of its own in DIR, and tells what is wrong.
// Without a display: xvfb-run -a demo ...
#import <AppKit/AppKit.h>
#include <getopt.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#import "Look.h"
#include "OnlyWindow.h"
#import "SettingsWindow.h"
#import "Texts.h"
#import "selftest/SelfTest.h"
#include "os/ZotOsFile.h"

namespace {

constexpr const char* kUsage =
    "usage: demo [--directory DIR] [--language N] [--tab profile|records|log|system]\n"
    "            [--screenshot FILE.png | --selftest]\n";

struct Options {
  std::string directory = "demo-profile";
  int language = 0;
  NSUInteger tab = 0;
  const char* screenshot = nullptr;
  bool selfTest = false;
  bool help = false;
  bool understood = true;

  bool interactive() const { return screenshot == nullptr && !selfTest; }
};

constexpr const char* kTabNames[] = {"profile", "records", "log", "system"};

// Behind the last one when none has this name.
NSUInteger tabNamed(std::string_view name) {
  return static_cast<NSUInteger>(std::ranges::find(kTabNames, name) - kTabNames);
}

Options readOptions(int argc, char** argv) {
  const option known[] = {
      {"directory", required_argument, nullptr, 'd'}, {"language", required_argument, nullptr, 'l'},
      {"tab", required_argument, nullptr, 't'},       {"screenshot", required_argument, nullptr, 's'},
      {"selftest", no_argument, nullptr, 'c'},        {"help", no_argument, nullptr, 'h'},
      {}};
  Options options;
  opterr = 0;  // AppKit has options of its own, such as -AppleLanguages '(fr)'
  for (int found; (found = getopt_long_only(argc, argv, "", known, nullptr)) != -1;) {
    switch (found) {
      case 'd':
        options.directory = optarg;
        break;
      case 'l':
        options.language = std::atoi(optarg);
        break;
      case 't':
        options.tab = tabNamed(optarg);
        options.understood = options.understood && options.tab != std::size(kTabNames);
        break;
      case 'c':
        options.selfTest = true;
        break;
      case 'h':
        options.help = true;
        break;
      case 's':
        options.screenshot = optarg;
        break;
    }
  }
  return options;
}

// The language files lie beside the program.  Paths go to ZOTMultiLang in ISO 8859-1,
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
  NSBitmapImageRep* picture = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[whole bounds]] autorelease];
  [whole unlockFocus];
  NSData* png = [picture representationUsingType:NSPNGFileType properties:[NSDictionary dictionary]];
  return [png writeToFile:[NSString stringWithUTF8String:path] atomically:NO];
}

int run(const Options& options) {
  Texts* texts = [[[Texts alloc] initWithDirectory:textDirectory()] autorelease];
  [texts setLanguage:options.language];
  std::error_code failure;
  std::filesystem::create_directories(options.directory, failure);
  if (failure) {
    std::fprintf(stderr, "demo: %s: %s\n", options.directory.c_str(), failure.message().c_str());
    return EXIT_FAILURE;
  }
  const OnlyWindow only(options.directory);
  if (!only.isMine()) {
    std::fprintf(stderr, "demo: %s\n", [[texts textOf:kOutcomes sub:kSecondWindow] UTF8String]);
    if (options.interactive()) {
      NSRunAlertPanel([texts textOf:kWindowTitle], @"%@", nil, nil, nil,
                      [texts textOf:kOutcomes sub:kSecondWindow]);
    }
    return EXIT_FAILURE;
  }
  // Standard output becomes the log's file; what is said to people goes to the terminal.
  FILE* terminal = fdopen(dup(STDOUT_FILENO), "w");
  if (terminal == nullptr || !logToFile(options.directory + "/window.log")) {
    std::perror(("demo: " + options.directory + "/window.log").c_str());
    return EXIT_FAILURE;
  }
  SharedLog log;
  SettingsWindow* settings = [[[SettingsWindow alloc] initWithTexts:texts
                                                           language:options.language
                                                          directory:options.directory
                                                                log:&log] autorelease];
  [settings selectTab:options.tab];
  // A picture of the log has lines in it.
  const uint32_t raised =
      options.screenshot != nullptr ? (ZOT_LOG_TRACE | ZOT_LOG_STDOUT) & ~ZotOsdGetLogLevel(log) : 0;
  ZotOsvSetLogLevel(log, raised);
  int status = EXIT_SUCCESS;
  if (options.selfTest) {
    status = runSelfTest(settings, textDirectory(), options.directory, terminal) == 0 ? EXIT_SUCCESS
                                                                                      : EXIT_FAILURE;
  } else if ([settings open]; options.interactive()) {
    [NSApp run];
  } else if (writePicture([settings window], options.screenshot)) {
    std::fprintf(terminal, "%s shows \"%s\"\n", options.screenshot, [[[settings window] title] UTF8String]);
  } else {
    std::fprintf(stderr, "demo: cannot write %s\n", options.screenshot);
    status = EXIT_FAILURE;
  }
  [settings close];
  ZotOsvResLogLevel(log, raised);
  std::fclose(terminal);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  const Options options = readOptions(argc, argv);
  if (options.help || !options.understood) {
    std::fputs(kUsage, options.help ? stdout : stderr);
    return options.help ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  // Foundation and AppKit begin to lock when the first thread starts: that must not be in
  // the middle of a drawing, where a worker of ours would set it off.
  [NSThread detachNewThreadSelector:@selector(self) toTarget:[NSObject class] withObject:nil];
  registerLook(!options.interactive());
  [NSApplication sharedApplication];
  installLook();
  const int status = run(options);
  [pool release];
  return status;
}
