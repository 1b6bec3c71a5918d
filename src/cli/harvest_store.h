// The collection that a harvest fills, and how far it has come with each input.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/harvest.h"
#include "base/status.h"
#include "collection/collection.h"
#include "platform/idna.h"

namespace quenlar {

enum class InputEnd {
  kDone,     // nothing is left in the input
  kCutOff,   // a later run goes on behind what has been noted
  kNotRead,  // a later run begins anew
};

// An input is known by its path, its size, the time of its last change, and what it was read for. How far it has been
// read is written in the same transaction as what was read. After a failure nothing more is put in.
class HarvestStore {
 public:
  // `reading` is what decides which addresses of an input are listed: another text where it may decide otherwise. Its
  // digest is stored, since filters may name addresses.
  HarvestStore(std::unique_ptr<Collection> collection, const Idna& idna, std::string_view reading);

  // Where the reading of an input goes on; empty when it has been read to its end. NoteEnd is to be called then too.
  [[nodiscard]] std::optional<HarvestPlace> PlaceOf(const HarvestInput& input, const ReadableFile* file);
  // Puts a page in. `kept` are those of its addresses that are wanted. Gives their positions in `kept` that are new.
  [[nodiscard]] std::vector<std::size_t> Add(const HarvestedPage& page, const std::vector<SeenAddress>& kept,
                                             std::size_t filtered);
  // Notes that an input has been read as far as `behind`, with so much more damage.
  void Note(const HarvestInput& input, const HarvestPlace& behind, std::size_t damaged);
  // Notes its end. Gives the damage that earlier runs have found in it.
  [[nodiscard]] std::size_t NoteEnd(const HarvestInput& input, InputEnd end);

  Status BeginRun(std::int64_t now) { return collection_->BeginRun(now); }
  Status SaveRun(const RunRecord& run) { return collection_->SaveRun(run); }
  // Commits what has been put in when it is time to, or `now`. True when everything is committed. A kill at any time
  // loses nothing that is committed; a lost machine may lose the last seconds, but those of the end.
  [[nodiscard]] bool Commit(bool now);
  [[nodiscard]] const Status& failure() const { return failure_; }
  [[nodiscard]] std::size_t finished_before() const { return finished_before_; }

 private:
  struct Progress {
    std::string file;  // what the input is known by beside its path
    HarvestPlace place;
    std::size_t damaged = 0, damaged_before = 0;
  };
  void Write(const HarvestInput& input, const Progress& progress, bool done);
  [[nodiscard]] bool Failed(const Status& status);

  const std::unique_ptr<Collection> collection_;
  const Idna& idna_;
  const std::string reading_;                  // its digest
  std::map<std::string, Progress> under_way_;  // by path
  std::size_t finished_before_ = 0;
  std::chrono::steady_clock::time_point committed_ = std::chrono::steady_clock::now();
  Status failure_;
};

}  // namespace quenlar
