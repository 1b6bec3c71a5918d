// The front end of a command that drives the engine and has nothing to show of it but message boxes.
#pragma once

#include <string>

#include "engine/engine.h"

namespace quenlar {

class CommandFrontEnd : public RunView, public RunHost, public ProjectView {
 public:
  // The text of an input box, so to speak: what names the project at hand.
  [[nodiscard]] const std::string& input_text() const { return input_text_; }

  // Opens the project that `text` names. Pumps.
  void Open(Engine& engine, const std::string& text) {
    engine_ = &engine;
    SetInputText(text);
  }

  void ShowStage(const std::string&) override {}
  void ShowAddressCount(std::uint32_t) override {}
  void ShowScanCount(std::int64_t) override {}
  void AddRow(std::uint32_t, bool) override {}
  void ClearRows() override {}

  [[nodiscard]] bool StopButtonShown() const override { return true; }
  void ShowEnd(const std::string&) override {}
  void SaveDataAtEnd() override {}
  void SaveReportAtEnd() override {}
  void RestoreIdle(bool) override {}
  void ShowEndTime() override {}
  void EnableExit() override {}

  void EnableDelete(bool) override {}
  void EnableExport(bool) override {}
  void EnableExtract() override {}
  [[nodiscard]] bool Ready() const override { return true; }
  void SetInputText(const std::string& text) override {
    input_text_ = text;
    engine_->projects.OpenProject(text);
  }

  [[nodiscard]] FrontEnd AsFrontEnd() { return {*this, *this, *this}; }

 private:
  Engine* engine_ = nullptr;
  std::string input_text_;
};

}  // namespace quenlar
