// The window program over a fake platform with a folder on the disk, where its collections lie.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/scratch_collection.h"
#include "engine/collections.h"
#include "forms/program.h"
#include "support/fake_platform.h"

namespace quenlar {

// A program whose web settings say that it collects. Nothing is started yet.
class CollectingProgram : public testing::Test, public FakePlatform {
 protected:
  CollectingProgram() {
    settings_.collect = 1;
    settings_.contact = "https://me.example/";
    Store(settings_);
    registry.SaveRegValue(kProjectKey, "NeverUpgrade", "1");
    registry.SaveRegValue(kProjectKey, "StopNumber", "99999");
    EXPECT_TRUE(disk_->MakeFolder(home_).ok());
    Page("https://www.cars.example/", "<title>Cars</title>first@cars.de <a href='/two'>more</a>");
    Page("https://www.cars.example/two", "<title>Two</title><a href='mailto:second@cars.de'>mail</a> third@cars.de");
    web_client.ServeOthers([](const WebRequest&) { return ScriptedWebAnswer{.status = 404, .ip = kPublicPlace}; });
    MakeProgram();
  }

  // The program as it is started anew.
  void MakeProgram() {
    program_.reset();
    program_ = std::make_unique<Program>(
        Platform{loop, fetcher, registry, interfaces, *disk_, code_page, clock, shell, boxes, idna, text_decoder},
        desktop, Home(), Program::System{[] { return false; }, [] {}}, Pump::Pace::kAlways);
  }
  void Start() { ASSERT_TRUE(program_->Start()); }
  void Store(const WebSettings& settings) { ASSERT_TRUE(StoreWebSettings(registry, settings).ok()); }
  // By the dialog, as a person does it.
  void SwitchTo(bool collect) {
    Main().mnuWeb.Click();
    if (program_->web.chkCollect.checked() != collect) program_->web.chkCollect.UserClick();
    program_->web.cmdOK.Click();
  }

  void Page(const std::string& url, const std::string& body) {
    web_client.Serve(url, ScriptedWebAnswer{.body = body, .ip = kPublicPlace});
  }
  void Begin(const std::string& text) {
    Main().cmbURL.UserText(text);
    Main().cmdExtract.Click();
  }
  void FinishRun() {
    for (int i = 0; i < 100000 && RunGoesOn(); ++i) loop.Wait(std::chrono::milliseconds(100));
    ASSERT_FALSE(RunGoesOn());
  }
  // Within the run that follows, once the list holds an address.
  void WhenFound(std::function<void()> action) {
    loop.OnPump([this, action = std::move(action)] {
      if (!RunGoesOn() || Main().lstMail.rows() == 0) return;
      loop.OnPump({});
      action();
    });
  }
  void Collect(const std::string& text) {
    Begin(text);
    FinishRun();
  }
  [[nodiscard]] bool RunGoesOn() const { return Main().job().running() || program_->tray.tmrExtract.enabled(); }

  [[nodiscard]] frmExtract& Main() const { return program_->extract; }
  [[nodiscard]] const std::string& Panel(std::size_t n) const { return Main().stsExtract.panel(n); }
  [[nodiscard]] std::vector<std::string> Rows(int column) const {
    std::vector<std::string> cells;
    for (std::uint32_t row = 0; row < Main().lstMail.rows(); ++row) {
      cells.push_back(Main().lstMail.CellText(row, column));
    }
    return cells;
  }
  [[nodiscard]] std::string Contents(const std::string& name) const {
    const auto text = ReadWhole(*disk_, home_ + "/" + name);
    return text.ok() ? text.value() : "(none)";
  }
  void Put(const std::string& name, const std::string& text) {
    ASSERT_TRUE(WriteWhole(*disk_, home_ + "/" + name, text).ok());
  }
  [[nodiscard]] bool Exists(const std::string& name) const { return disk_->FileExists(home_ + "/" + name); }
  // The pages that were asked for, robots.txt left out.
  [[nodiscard]] std::vector<std::string> Visited() const {
    std::vector<std::string> urls = web_client.urls();
    std::erase_if(urls, [](const std::string& url) { return url.ends_with("/robots.txt"); });
    return urls;
  }

  static constexpr const char* kPublicPlace = "1.0.0.1";
  ScratchFolder folder_;
  std::string home_ = folder_.File("home");
  std::unique_ptr<Files> disk_ = SystemFiles();
  WebSettings settings_;
  std::unique_ptr<Program> program_;

 private:
  [[nodiscard]] Installation Home() const {
    Installation installation;
    installation.program_folder = home_;
    return installation;
  }
};

}  // namespace quenlar
