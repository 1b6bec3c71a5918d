// The settings registry as one file of text.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/posix/registry_text.h"
#include "platform/registry.h"

namespace quenlar {

// The file is read at construction. A change holds at once in memory. The file takes all changes in one step, in the
// next pump or at destruction, so another program never sees a key that has been deleted and not yet written again. The
// changes are applied to what the file holds by then, under a lock, so two programs do not lose each other's values.
//
// A file that could not be read, or that has lines which cannot be understood, is kept under its name with ".bak"
// before it is replaced.
class FileRegistry : public Registry {
 public:
  // `path` is the file. Its folders are made at the first write. Both references must outlive the registry.
  FileRegistry(Files& files, EventLoop& loop, std::string path);
  FileRegistry(const FileRegistry&) = delete;
  FileRegistry& operator=(const FileRegistry&) = delete;
  ~FileRegistry() override;

  void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) override;
  [[nodiscard]] std::string GetRegValue(const std::string& key, const std::string& name) const override;
  void DeleteRegKey(const std::string& key) override;
  [[nodiscard]] bool KeyExists(const std::string& key) const override;
  [[nodiscard]] bool ValueExists(const std::string& key, const std::string& name) const override;
  // When it fails, the changes stay in memory and the next flush tries again.
  Status Flush() override;

 private:
  struct Change {
    bool deletes_key = false;
    std::string key = {}, name = {}, text = {};
  };
  void Make(Change change);
  Status WriteChanges();
  static void Apply(const Change& change, RegistryContents& contents);

  Files& files_;
  EventLoop& loop_;
  const std::string path_, folder_, name_;
  RegistryContents contents_;
  std::vector<Change> changes_;  // not yet in the file
  bool flush_posted_ = false;
  Status unread_;  // why the file could not be read at construction, if it could not
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // posted flushes hold it weakly
};

}  // namespace quenlar
