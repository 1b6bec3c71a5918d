// The whole window program over a fake platform: forms without windows, started and driven by a test.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "forms/program.h"
#include "support/fake_platform.h"

namespace quenlar {

// A program in the folder "/home". Nothing is started yet.
struct ProgramWorld : FakePlatform {
  ProgramWorld() { files.AddFolder("/home"); }
  ProgramWorld(const ProgramWorld&) = delete;
  ProgramWorld& operator=(const ProgramWorld&) = delete;

  int ends = 0;  // calls for the end of the program
  bool another_instance = false;
  Program program{platform, desktop, Folder(), Program::System{[this] { return another_instance; }, [this] { ++ends; }},
                  Pump::Pace::kAlways};

  // Addressed as a test reads best.
  frmTray& tray = program.tray;
  frmExtract& extract = program.extract;
  Engine& engine = program.engine;
  frmOption& option = program.option;
  frmEmailMergeTool& tool = program.tool;

  [[nodiscard]] RecordingTray& desktop_icon() { return FakePlatform::tray; }

  void Start() { ASSERT_TRUE(program.Start()); }

  // What earlier starts of the program have left in the registry.
  void Store(const std::string& name, const std::string& text) { registry.SaveRegValue(kProjectKey, name, text); }
  void StoreProjects(const std::vector<std::string>& names) {
    Store("NeverUpgrade", "1");
    Store("StopNumber", "99999");
    Store("ProjectNum", std::to_string(names.size()));
    for (std::size_t i = 0; i < names.size(); ++i) Store("Project" + std::to_string(i + 1), names[i]);
  }
  [[nodiscard]] std::string Stored(const std::string& name) const {
    return registry.Stored(kProjectKey, name).value_or("(none)");
  }

  // The n-th panel of the main window's status bar, from 1.
  [[nodiscard]] const std::string& Panel(std::size_t n) const { return program.extract.stsExtract.panel(n); }
  [[nodiscard]] bool Boxed(const std::string& text) const {
    for (const auto& box : boxes.shown) {
      if (box.text == text) return true;
    }
    return false;
  }

  void Type(const std::string& text) { extract.cmbURL.UserText(text); }
  // Presses Extract and lets the run go to its end.
  void RunProject(const std::string& text) {
    Type(text);
    extract.cmdExtract.Click();
    FinishRun();
  }
  void FinishRun() {
    for (int i = 0; i < 10000 && (engine.run.running || tray.tmrExtract.enabled()); ++i) {
      loop.Wait(std::chrono::milliseconds(100));
    }
    ASSERT_FALSE(engine.run.running);
  }

 private:
  static Installation Folder() {
    Installation installation;
    installation.program_folder = "/home";
    return installation;
  }
};

class ProgramTest : public testing::Test, public ProgramWorld {};

}  // namespace quenlar
