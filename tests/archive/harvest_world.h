// Harvests over files in memory.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "archive/harvest.h"
#include "support/fake_idna.h"
#include "support/fake_text_decoder.h"
#include "support/in_memory_files.h"

namespace quenlar {

class TextSource final : public ByteSource {
 public:
  explicit TextSource(std::string text, std::size_t piece = SIZE_MAX) : text_(std::move(text)), piece_(piece) {}
  [[nodiscard]] Result<std::size_t> Read(char* buffer, std::size_t size) override {
    const std::size_t got = text_.copy(buffer, std::min(size, piece_), at_);
    at_ += got;
    return got;
  }

 private:
  const std::string text_;
  const std::size_t piece_;
  std::size_t at_ = 0;
};

// What a harvest gives, as texts.
class HarvestWorld : public HarvestView {
 public:
  InMemoryFiles files;
  std::string standard_input;
  std::map<std::string, HarvestPlace> places;  // where inputs begin; that of a name in `known` is not read
  std::vector<std::string> known;
  bool decode_protected = false, obey_robots = true;
  std::size_t portions_until_stop = SIZE_MAX;

  std::vector<std::string> rows;     // "address url", each page's addresses once
  std::vector<std::string> reports;  // of inputs: "name kind damaged", "name failed"
  std::vector<HarvestPlace> behind;  // of each portion
  std::vector<std::size_t> rows_before;
  std::uint64_t pages = 0;

  // The rows of the inputs, joined by commas; "-" is standard input.
  std::string Run(const std::vector<std::string>& inputs, std::size_t jobs = 1) {
    rows.clear();
    reports.clear();
    behind.clear();
    rows_before.clear();
    pages = 0;
    std::vector<HarvestInput> given;
    for (const std::string& input : inputs) given.push_back({input, input == "-" ? "" : input});
    TextSource source(standard_input, 1000);
    InputWalk walk(files, given, '/');
    Harvest(files, source, {jobs, {idna_, decoder_, decode_protected, obey_robots}}, *this).Run(walk);
    return Joined();
  }
  // The rows of one file of these bytes.
  std::string Of(const std::string& bytes, std::size_t jobs = 1) {
    files.Put("/a", bytes);
    return Run({"/a"}, jobs);
  }
  [[nodiscard]] std::string Joined() const {
    std::string all;
    for (const std::string& row : rows) all += (all.empty() ? "" : ",") + row;
    return all;
  }

  [[nodiscard]] std::optional<HarvestPlace> PlaceOf(const HarvestInput& input, const ReadableFile*) override {
    if (std::find(known.begin(), known.end(), input.name) != known.end()) return std::nullopt;
    const auto place = places.find(input.name);
    return place == places.end() ? HarvestPlace{} : place->second;
  }
  [[nodiscard]] bool OnPortion(const HarvestInput&, HarvestPortion& portion) override {
    pages += portion.counts.pages;
    for (const HarvestedPage& page : portion.pages) {
      for (const HarvestedPage::Address& address : page.addresses) {
        if (address.first) rows.push_back(std::string(page.AddressOf(address)) + " " + page.url);
      }
      last = page;
    }
    behind.push_back(portion.behind);
    rows_before.push_back(rows.size());
    return behind.size() < portions_until_stop;
  }
  [[nodiscard]] bool OnInputEnd(const InputReport& report) override {
    reports.push_back(report.input.name + (report.failure.ok() ? " " + std::to_string(static_cast<int>(report.kind)) +
                                                                     " " + std::to_string(report.damaged)
                                                               : " failed"));
    return true;
  }
  void OnFailure(const Status& failure) override { reports.push_back(failure.message()); }

  HarvestedPage last;

 private:
  FakeIdna idna_;
  FakeTextDecoder decoder_;
};

}  // namespace quenlar
