// The settings registry as one file of text.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/posix/registry_text.h"
#include "platform/registry.h"

namespace quenlar {

// Read when it is made. Changes hold at once here; the file takes all of them in one step in the next pump, or when the
// registry dies, so that a key that is deleted and written anew is never seen half done. They are made in what the file
// holds by then, under a lock: two programs do not lose each other's values. A file with lines that cannot be
// understood, or that could not be read at first, is kept under its name with ".bak" before it is replaced.
class FileRegistry : public Registry {
 public:
  // The folders of `path` are made when something is written.
  FileRegistry(Files& files, EventLoop& loop, std::string path);
  FileRegistry(const FileRegistry&) = delete;
  FileRegistry& operator=(const FileRegistry&) = delete;
  ~FileRegistry() override;

  void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) override;
  [[nodiscard]] std::string GetRegValue(const std::string& key, const std::string& name) const override;
  void DeleteRegKey(const std::string& key) override;
  [[nodiscard]] bool KeyExists(const std::string& key) const override;
  [[nodiscard]] bool ValueExists(const std::string& key, const std::string& name) const override;
  // The values hold for this program whatever comes of it, and the next flush tries again.
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
  Status unread_;  // why the file could not be read, if so: nobody knows then what it holds
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // posted flushes hold it weakly
};

}  // namespace quenlar
