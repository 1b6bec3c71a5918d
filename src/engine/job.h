// What the main window has open and runs: a classic project, or a collection of today's web. The window treats both
// alike.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "state/found_addresses.h"

namespace quenlar {

// What a job shows it tells the front end that it was made with: RunView, RunHost and ProjectView.
class Job {
 public:
  virtual ~Job() = default;

  // The texts that the box offers, the one that was run or picked last on top.
  [[nodiscard]] virtual std::vector<std::string> Texts() const = 0;
  // A run of what is open begins, under this text. Returns whether Texts has changed.
  virtual bool AddText(std::string_view text) = 0;
  // Moves a text to the top.
  virtual void PickText(std::string_view text) = 0;
  // The files of this text have been deleted. StoreTexts follows, when the window shows the texts that are left.
  virtual void RemoveText(std::string_view text) = 0;
  virtual void StoreTexts() = 0;

  // Opens what `text` names and loads its addresses. Pumps. When it is called again inside a pump, the later call wins.
  // Throws std::bad_alloc; nothing is open then.
  virtual void Open(std::string_view text) = 0;
  // Loads the rest at once when an opening further up the stack is still loading. Does not pump.
  virtual void FinishLoading() = 0;
  // Takes the addresses that are suppressed by now out of what is open; it is loaded. Does not pump. Returns false
  // where it has to be opened again for that.
  [[nodiscard]] virtual bool TakeOutSuppressed() = 0;
  // Whether what is open has files of its own, or would get them by a run.
  [[nodiscard]] virtual bool HasFiles() const = 0;
  [[nodiscard]] virtual const FoundAddresses& found() const = 0;
  // The pages scanned, as a window shows them that is opened anew.
  [[nodiscard]] virtual std::int64_t scanned() const = 0;

  // Fails when a run could not be saved, so that it does not begin.
  [[nodiscard]] virtual Status CheckCanBeSaved() = 0;
  // The path of the report, whether the file is there or not; "" where nothing is open.
  [[nodiscard]] virtual std::string report() const = 0;
  // Writes the report, in the place of an older one. May pump. The message of a failure is a complete sentence.
  virtual Status WriteReport() = 0;
  // Deletes all files of what is open. Goes on behind a failure, and returns the first one; its message is a complete
  // sentence. The shown addresses stay.
  virtual Status DeleteFiles() = 0;

  // Makes one run of what is open. Pumps until it has ended. It must not be called while a run goes on.
  virtual void Run() = 0;
  // Ends the run in order, soon. Does not pump.
  virtual void Stop() = 0;
  [[nodiscard]] virtual bool running() const = 0;
  // Saves what a run has found so far, without pumping: for the end of the program.
  virtual void SaveAtOnce() = 0;
};

}  // namespace quenlar
