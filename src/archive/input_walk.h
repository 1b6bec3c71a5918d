// The files that inputs name: themselves, and those in folders.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/status.h"
#include "platform/files.h"

namespace quenlar {

struct HarvestInput {
  std::string name;    // as it is shown: what was given, "-" for standard input; in a folder that and the path in it
  std::string path;    // absolute; empty for standard input
  bool named = false;  // it was given itself, not found in a folder
};

// Gives the inputs in their order. The files of a folder come by name, bytewise, those of the folders in it among them.
// Links in folders are not followed.
class InputWalk {
 public:
  // The inputs' paths are absolute. `separator` stands between a folder and a name.
  InputWalk(const Files& files, std::vector<HarvestInput> inputs, char separator)
      : files_(files), separator_(separator), given_(std::move(inputs)) {}

  // The next file; empty behind the last one. A failure is that of a folder that cannot be read, and the walk goes on
  // behind it.
  [[nodiscard]] Result<std::optional<HarvestInput>> Next();

 private:
  struct Folder {
    HarvestInput input;
    std::vector<std::string> names;
    std::size_t next = 0;
  };
  [[nodiscard]] Status Enter(HarvestInput folder);

  const Files& files_;
  const char separator_;
  const std::vector<HarvestInput> given_;
  std::size_t next_ = 0;
  std::vector<Folder> folders_;  // the innermost one last
};

}  // namespace quenlar
