// The suppression list as the window shows and changes it: what is added is taken out of everything stored, too.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "engine/engine.h"
#include "engine/erase.h"

namespace quenlar {

// Puts the digests of these addresses on the list, so that it holds for them without naming them, and takes off it what
// names them. They are in the form of an entry (SuppressionEntry).
[[nodiscard]] Status SuppressByDigest(Files& files, const Idna& idna, const Installation& installation,
                                      const std::vector<std::string>& addresses);

// What has been taken out, as a sentence without its end: "anna@example.org: 1 address taken out of 2 collections and
// 0 files of projects".
[[nodiscard]] std::string ErasedText(const std::string& subject, const EraseOutcome& outcome);

class NeverList {
 public:
  // The engine must outlive the object. `run_goes_on` says whether what is stored is in use: then nothing can be taken
  // out of it, and nothing is added. `erased` is called when something was added: it leaves what is open, too.
  struct Context {
    Engine& engine;
    std::function<bool()> run_goes_on;
    std::function<void()> erased;
  };
  explicit NeverList(Context context) : context_(std::move(context)) {}

  [[nodiscard]] Result<std::vector<std::string>> Entries();

  // kBusy, with a message, while a run goes on: the list cannot be changed then.
  [[nodiscard]] Status CheckIdle() const;

  // These change the list and return what has been done, sentences without their ends. None of them pumps, but `erased`
  // may. They fail as CheckIdle does.
  [[nodiscard]] Result<std::vector<std::string>> Add(std::string_view entry);
  [[nodiscard]] Result<std::vector<std::string>> Import(const std::string& path);
  [[nodiscard]] Result<std::vector<std::string>> AddDigests(const std::vector<std::string>& addresses);
  [[nodiscard]] Status Remove(const std::vector<std::string>& entries);

 private:
  [[nodiscard]] Result<std::vector<std::string>> AddAll(const SuppressionList& given, const std::string& subject);
  [[nodiscard]] Result<std::vector<std::string>> Erase(const SuppressionList& given, const std::string& subject);

  Context context_;
};

}  // namespace quenlar
