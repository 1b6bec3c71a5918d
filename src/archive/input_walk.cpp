#include "archive/input_walk.h"

#include <utility>

namespace quenlar {

Status InputWalk::Enter(HarvestInput folder) {
  Result<std::vector<std::string>> names = files_.Names(folder.path);
  if (!names.ok()) return names.status();
  for (std::string* text : {&folder.name, &folder.path}) {
    if (text->empty() || (text->back() != separator_ && text->back() != '/')) *text += separator_;
  }
  folders_.push_back({std::move(folder), names.take(), 0});
  return Status::Ok();
}

Result<std::optional<HarvestInput>> InputWalk::Next() {
  for (;;) {
    HarvestInput input;
    bool is_folder = false;
    if (folders_.empty()) {
      if (next_ == given_.size()) return std::optional<HarvestInput>();
      input = given_[next_++];
      input.named = true;
      is_folder = !input.path.empty() && files_.FolderExists(input.path);
    } else {
      Folder& folder = folders_.back();
      if (folder.next == folder.names.size()) {
        folders_.pop_back();
        continue;
      }
      const std::string& name = folder.names[folder.next++];
      input.name = folder.input.name + name;
      input.path = folder.input.path + name;
      const PathKind kind = files_.KindOf(input.path);
      if (kind != PathKind::kFile && kind != PathKind::kFolder) continue;
      is_folder = kind == PathKind::kFolder;
    }
    if (!is_folder) return std::optional<HarvestInput>(std::move(input));
    if (const Status entered = Enter(std::move(input)); !entered.ok()) return entered;
  }
}

}  // namespace quenlar
