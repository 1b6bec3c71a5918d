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
  std::optional<std::string> http_open_command;  // what HttpOpenCommand answers
  std::string system_directory = "C:\\Windows\\system32";
  Status start_status;  // what Start answers

  struct Opened {
    std::string program, parameters;
    bool operator==(const Opened&) const = default;
  };
  struct Started {
    std::string command_line;
    WindowMode mode;
  };
  std::vector<Opened> opened;
  std::vector<Started> started;
  std::vector<std::string> copied;

  [[nodiscard]] std::optional<std::string> HttpOpenCommand() const override { return http_open_command; }
  void Open(const std::string& program, const std::string& parameters) override {
    opened.push_back({program, parameters});
  }
  [[nodiscard]] std::string SystemDirectory() const override { return system_directory; }
  Status Start(const std::string& command_line, WindowMode mode) override {
    started.push_back({command_line, mode});
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
  std::function<void(int message)> callback;

  void AddTrayIcon() override { ++added; }
  void RemoveTrayIcon() override { ++removed; }
  void OnMessage(std::function<void(int message)> handler) override { callback = std::move(handler); }
};

}  // namespace quenlar
