// Files and directories beside std::filesystem, in time on the wall, in a directory
// below TMPDIR.  Fixed counts of operations: making ready takes longer than the work.
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "Directory.h"
#include "Row.h"
#include "os/ZotOsFile.h"

namespace fs = std::filesystem;

namespace {

void writeFile(const fs::path& path, size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; i += 64) {
    bytes[i] = static_cast<char>(i / 64 + 1);
  }
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string numbered(const fs::path& directory, int i, const char* extension) {
  return directory / ("report" + std::to_string(10'000 + i) + extension);
}

// One file of 64 MiB to a new name.  Ours also gives the copy the owner and the times.
template <typename Copy>
void copyLarge(benchmark::State& state, Copy copy) {
  const Directory directory;
  const std::string from = directory.path() / "from";
  const std::string to = directory.path() / "to";
  writeFile(from, size_t{64} << 20);
  measure(
      state, [&] { fs::remove(to); }, [&] { copy(from, to); });
  require(fs::file_size(to) == fs::file_size(from), "copy");
}

// A thousand files of 4 KiB to new names.
template <typename Copy>
void copySmall(benchmark::State& state, Copy copy) {
  constexpr int kFiles = 1000;
  const Directory directory;
  const fs::path from = directory.path() / "from";
  const fs::path to = directory.path() / "to";
  fs::create_directory(from);
  std::vector<std::pair<std::string, std::string>> names;
  for (int i = 0; i < kFiles; ++i) {
    names.emplace_back(numbered(from, i, ""), numbered(to, i, ""));
    writeFile(names.back().first, 4096);
  }
  measure(
      state,
      [&] {
        fs::remove_all(to);
        fs::create_directory(to);
      },
      [&] {
        for (const auto& [source, destination] : names) {
          copy(source, destination);
        }
      });
}

void copyOurs(const std::string& from, const std::string& to) {
  require(ZotOsCopyFile(from.c_str(), to.c_str(), 0) == 1, "copy");
}

void copyStd(const std::string& from, const std::string& to) {
  fs::copy_file(from, to, fs::copy_options::overwrite_existing);
}

void copyLargeOurs(benchmark::State& state) {
  copyLarge(state, copyOurs);
}

void copyLargeStd(benchmark::State& state) {
  copyLarge(state, copyStd);
}

void copySmallOurs(benchmark::State& state) {
  copySmall(state, copyOurs);
}

void copySmallStd(benchmark::State& state) {
  copySmall(state, copyStd);
}

BENCHMARK(copyLargeOurs)->Name("copy_64mib/ours")->Iterations(2)->UseRealTime();
BENCHMARK(copyLargeStd)->Name("copy_64mib/filesystem")->Iterations(2)->UseRealTime();
BENCHMARK(copySmallOurs)->Name("copy_1000_files/ours")->Iterations(1)->UseRealTime();
BENCHMARK(copySmallStd)->Name("copy_1000_files/filesystem")->Iterations(1)->UseRealTime();

// A directory of 10,000 files, half of which match; of those the name, the type, the
// time and the size.
constexpr int kEntries = 10'000;

struct Total {
  uint64_t hits = 0;
  uint64_t bytes = 0;
  uint64_t seconds = 0;
  bool operator==(const Total&) const = default;
};

void fillDirectory(const fs::path& path) {
  fs::create_directory(path);
  for (int i = 0; i < kEntries; ++i) {
    std::ofstream(numbered(path, i, i % 2 == 0 ? ".txt" : ".dat")) << "text";
  }
}

Total listOurs(const std::string& directory) {
  ZotOsFindData find{};
  char name[ZOT_OS_FIND_TEXT];
  uint32_t type = 0;
  uint32_t mtime = 0;
  uint32_t size = 0;
  Total total;
  const std::string pattern = directory + "/report*.txt";
  uint32_t more = ZotOsFindFirst(&find, pattern.c_str(), name, &type, &mtime, &size);
  while (more == 1) {
    total.hits += type == ZOT_OS_FIND_FILE;
    total.bytes += size;
    total.seconds += mtime;
    more = ZotOsFindNext(&find, name, &type, &mtime, &size);
  }
  ZotOsFindClose(&find);
  return total;
}

Total listStd(const std::string& directory) {
  Total total;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    const std::string_view name = std::string_view(entry.path().native()).substr(directory.size() + 1);
    if (name.starts_with("report") && name.ends_with(".txt")) {
      total.hits += !entry.is_directory();
      total.bytes += entry.file_size();
      const auto time = std::chrono::file_clock::to_sys(entry.last_write_time());
      total.seconds += static_cast<uint64_t>(
          std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count());
    }
  }
  return total;
}

// Filled once: making the files takes longer than listing them.
struct FilledDirectory : Directory {
  FilledDirectory() { fillDirectory(path() / "many"); }
};

template <typename List>
void list(benchmark::State& state, List lister) {
  static const FilledDirectory directory;
  const std::string path = directory.path() / "many";
  require(listOurs(path) == listStd(path), "list");
  measure(state, [&] { benchmark::DoNotOptimize(lister(path)); });
}

void listAll(benchmark::State& state) {
  list(state, listOurs);
}

void listAllStd(benchmark::State& state) {
  list(state, listStd);
}

BENCHMARK(listAll)->Name("list_10000/ours")->UseRealTime();
BENCHMARK(listAllStd)->Name("list_10000/filesystem")->UseRealTime();

// The directory with its 10,000 files.
void deleteTree(benchmark::State& state) {
  const Directory directory;
  const std::string path = directory.path() / "many";
  measure(
      state, [&] { fillDirectory(path); }, [&] { require(ZotOsDeleteDirTree(path.c_str()) == 1, "delete"); });
}

void deleteTreeStd(benchmark::State& state) {
  const Directory directory;
  const std::string path = directory.path() / "many";
  measure(
      state, [&] { fillDirectory(path); },
      [&] { require(fs::remove_all(path) == kEntries + 1, "remove_all"); });
}

BENCHMARK(deleteTree)->Name("delete_10000/ours")->Iterations(1)->UseRealTime();
BENCHMARK(deleteTreeStd)->Name("delete_10000/filesystem")->Iterations(1)->UseRealTime();

}  // namespace
