#include "engine/erase.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

#include "base/ascii.h"
#include "collection/erase_addresses.h"
#include "engine/collections.h"

namespace quenlar {
namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{2} << 30;

// Whether the first address of the line is the one at `place`: the line is about it then.
bool IsAbout(std::string_view line, const UnwantedPlace& place) {
  const std::size_t first = std::min(line.find('@'), line.find("%40"));
  return first == place.sign;
}

// Takes a line of `text` over into `result`, from `begin` to behind its line end.
void TakeLine(std::string_view line, const AddressTest& keeps, std::set<std::string>& erased, std::string& result) {
  std::size_t from = 0;
  for (auto place = NextUnwanted(line, keeps); place; place = NextUnwanted(line, keeps, from)) {
    erased.insert(Lower(place->address));
    if (IsAbout(line, *place)) return;
    result.append(line, from, place->begin - from);
    from = place->end;
  }
  result.append(line, from);
}

class Eraser {
 public:
  Eraser(Files& files, const Installation& installation, const AddressTest& keeps)
      : files_(files), installation_(installation), keeps_(keeps) {}

  [[nodiscard]] EraseOutcome Run(OtherWriters others) {
    EraseCollections();
    if (others == OtherWriters::kNone) {
      EraseTexts();
    } else {
      outcome_.problems.push_back("Another Quenlar is at work in " + installation_.program_folder +
                                  ": the files of projects stay as they are until you give the command again");
    }
    return std::move(outcome_);
  }

 private:
  // The names in a folder; a missing folder has none.
  std::vector<std::string> NamesIn(const std::string& folder) {
    Result<std::vector<std::string>> names = files_.Names(folder);
    if (names.ok()) return names.take();
    if (names.status().kind() != StatusKind::kNotFound) outcome_.problems.push_back(names.status().message());
    return {};
  }

  void EraseCollections() {
    const Result<std::vector<std::string>> names = CollectionNames(files_, installation_);
    if (!names.ok()) return outcome_.problems.push_back(names.status().message());
    for (const std::string& name : names.value()) EraseCollection(name);
  }

  void EraseCollection(const std::string& name) {
    Result<ErasedFromCollection> erased = quenlar::EraseAddresses(CollectionPath(installation_, name), keeps_);
    if (!erased.ok()) {
      const bool busy = erased.status().kind() == StatusKind::kBusy;
      outcome_.problems.push_back(busy ? "The collection " + name +
                                             " is in use; give the command again when its run has ended"
                                       : erased.status().message());
      return;
    }
    ErasedFromCollection& found = erased.value();
    if (!found.addresses.empty() || found.texts > 0) ++outcome_.collections;
    for (std::string& address : found.addresses) outcome_.addresses.insert(std::move(address));
  }

  void EraseTexts() {
    for (const std::string& name : NamesIn(installation_.Data())) {
      const std::string path = installation_.Data(name);
      if (name.find(".dat") != std::string::npos && !name.starts_with(kFilterFile)) EraseText(path);
      if (name.find(".sqlite.bak") != std::string::npos && !name.ends_with("-wal") && !name.ends_with("-shm")) {
        outcome_.problems.push_back(path + ": a damaged collection that was kept aside may hold it; delete the file");
      }
    }
    for (const std::string& name : NamesIn(installation_.Report())) EraseText(installation_.Report(name));
  }

  void EraseText(const std::string& path) {
    if (!files_.FileExists(path)) return;
    if (const Status erased = TryEraseText(path); !erased.ok()) outcome_.problems.push_back(erased.message());
  }

  Status TryEraseText(const std::string& path) {
    try {
      const Result<std::string> text = ReadWhole(files_, path, kMostBytes);
      if (!text.ok()) return text.status();
      const std::string left = WithoutAddresses(text.value(), keeps_, outcome_.addresses);
      if (left.size() == text.value().size()) return Status::Ok();
      ++outcome_.files;
      // A collection's page is data in a program, which a missing line would break. It can be written anew at any time.
      if (path.ends_with(kWebPageEnding)) return files_.Delete(path);
      return WriteWhole(files_, path, left);
    } catch (const std::bad_alloc&) {
      return {StatusKind::kFull, path + ": there is not enough memory"};
    }
  }

  static constexpr std::string_view kWebPageEnding = ".web.html";
  static constexpr std::string_view kFilterFile = "ExtractFilter.dat";  // its words are what a person wants, not a find

  Files& files_;
  const Installation& installation_;
  const AddressTest& keeps_;
  EraseOutcome outcome_;
};

}  // namespace

std::string WithoutAddresses(std::string_view text, const AddressTest& keeps, std::set<std::string>& erased) {
  std::string left;
  std::size_t taken = 0;  // of the text, up to a line's beginning
  while (const auto place = NextUnwanted(text, keeps, taken)) {
    const std::size_t feed = text.rfind('\n', place->begin);
    const std::size_t begin = feed == std::string_view::npos ? 0 : feed + 1;
    const std::size_t end = std::min(text.find('\n', place->end), text.size() - 1) + 1;
    left.append(text, taken, begin - taken);
    TakeLine(text.substr(begin, end - begin), keeps, erased, left);
    taken = end;
  }
  left.append(text, taken);
  return left;
}

EraseOutcome EraseEverywhere(Files& files, const Installation& installation, const AddressTest& keeps,
                             OtherWriters others) {
  return Eraser(files, installation, keeps).Run(others);
}

}  // namespace quenlar
