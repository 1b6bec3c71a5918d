// Reads addresses out of archives, files and folders, with many threads, in the order of the inputs.
#pragma once

#include <memory>
#include <optional>

#include "archive/byte_source.h"
#include "archive/input_reader.h"
#include "archive/input_walk.h"
#include "archive/record_page.h"
#include "base/status.h"
#include "platform/files.h"

namespace quenlar {

// An input that has been read to its end, or could not be.
struct InputReport {
  const HarvestInput& input;
  InputKind kind;
  std::size_t damaged;  // records that were damaged, and stretches between records
  Status failure;       // why it could not be read, or not to its end
};

// What a harvest tells, in the order of the inputs and of the records in them, on the thread of Run.
class HarvestView {
 public:
  virtual ~HarvestView() = default;
  // Where the reading of an input begins; empty when it has been read before: then OnInputEnd alone follows. `file` is
  // null for standard input. Called ahead of the order of the inputs.
  [[nodiscard]] virtual std::optional<HarvestPlace> PlaceOf(const HarvestInput& input, const ReadableFile* file) = 0;
  // The next pages of an input. Where the input can be gone on with, `portion.behind` is the place to store for that.
  // Return false to end the harvest.
  [[nodiscard]] virtual bool OnPortion(const HarvestInput& input, HarvestPortion& portion) = 0;
  // Comes once for each input that was begun, behind its last portion. Return false to end the harvest.
  [[nodiscard]] virtual bool OnInputEnd(const InputReport& report) = 0;
  // A folder could not be read; the walk goes on behind it.
  virtual void OnFailure(const Status& failure) = 0;
};

struct HarvestSettings {
  std::size_t jobs = 1;  // cores to use
  PageReading reading;
};

// One harvest of some inputs. Owns the threads; the view is called on the thread of Run alone.
class Harvest {
 public:
  // `standard_input` is what the input "-" reads. Files, standard input, view, and what `settings` refers to must
  // outlive the harvest.
  Harvest(const Files& files, ByteSource& standard_input, HarvestSettings settings, HarvestView& view);
  ~Harvest();
  Harvest(const Harvest&) = delete;
  Harvest& operator=(const Harvest&) = delete;

  // Reads everything that the walk gives. To be called once. Returns when all is read, or the view has ended it.
  void Run(InputWalk& walk);

 private:
  struct Active;
  struct Pool;

  [[nodiscard]] bool AddWork(InputWalk& walk);
  [[nodiscard]] bool BeginInput(HarvestInput input);
  void AddWholeFile(const std::shared_ptr<Active>& active);
  // Its end is told behind all work that was given before. `failure` is why nothing more of it is read.
  void AddEnd(const std::shared_ptr<Active>& active, const Status& failure = {});
  [[nodiscard]] bool TakeOutcome();
  [[nodiscard]] bool EndIfDone(Active& active);

  const Files& files_;
  ByteSource& standard_input_;
  const HarvestSettings settings_;
  HarvestView& view_;
  std::shared_ptr<Active> current_;  // an input that is read in pieces, and may have more of them
  std::unique_ptr<Pool> pool_;
  bool goes_on_ = true;
};

}  // namespace quenlar
