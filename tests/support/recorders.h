// Stand-ins for what the program shows and starts: they write down each call and answer as the test says.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/file_dialogs.h"
#include "platform/message_boxes.h"
#include "platform/shell.h"
#include "platform/tray_icon.h"

namespace quenlar {

class RecordingBoxes : public MessageBoxes {
 public:
  struct Box {
    std::string text, title;
    BoxIcon icon;
    BoxButtons buttons;
  };
  std::vector<Box> shown;
  std::deque<BoxAnswer> answers;      // taken from the front; then kOk, or kNo where Yes and No are offered
  std::function<void()> while_shown;  // runs inside each Show, as handlers do while a real box pumps

  BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) override {
    shown.push_back({text, title, icon, buttons});
    if (const auto handler = while_shown) handler();
    if (answers.empty()) return buttons == BoxButtons::kOk ? BoxAnswer::kOk : BoxAnswer::kNo;
    const BoxAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  [[nodiscard]] std::vector<std::string> texts() const {
    std::vector<std::string> all;
    for (const Box& box : shown) all.push_back(box.text);
    return all;
  }
};

class RecordingShell : public Shell {
 public:
  Status edit_status, start_status;  // what Edit and Start answer

  std::vector<std::string> opened;   // addresses
  std::vector<std::string> edited;   // paths
  std::vector<std::string> started;  // command lines
  std::vector<std::string> copied;

  void OpenBrowser(const std::string& address) override { opened.push_back(address); }
  Status Edit(const std::string& path) override {
    edited.push_back(path);
    return edit_status;
  }
  Status Start(const std::string& command_line) override {
    started.push_back(command_line);
    return start_status;
  }
  void CopyToClipboard(const std::string& text) override { copied.push_back(text); }
};

class RecordingFileDialogs : public FileDialogs {
 public:
  std::vector<FileDialogRequest> open_requests, save_requests;
  std::deque<std::optional<Choice>> open_answers;       // then: cancelled
  std::deque<std::optional<std::string>> save_answers;  // then: cancelled

  [[nodiscard]] std::optional<Choice> Open(const FileDialogRequest& request) override {
    open_requests.push_back(request);
    return Next(open_answers);
  }
  [[nodiscard]] std::optional<std::string> Save(const FileDialogRequest& request) override {
    save_requests.push_back(request);
    return Next(save_answers);
  }

 private:
  template <typename Answer>
  static std::optional<Answer> Next(std::deque<std::optional<Answer>>& answers) {
    if (answers.empty()) return std::nullopt;
    auto answer = std::move(answers.front());
    answers.pop_front();
    return answer;
  }
};

class RecordingTray : public TrayIcon {
 public:
  int added = 0, removed = 0;
  std::function<void()> right_button_down;

  void AddTrayIcon() override { ++added; }
  void RemoveTrayIcon() override { ++removed; }
  void OnRightButtonDown(std::function<void()> handler) override { right_button_down = std::move(handler); }
};

}  // namespace quenlar
