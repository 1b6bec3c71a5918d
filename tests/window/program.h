// Quenlar.exe under test: started in a program folder of its own, with settings of its own.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "window/site.h"
#include "window/window.h"

namespace quenlar::window_test {

inline constexpr const char* kCaption = "Brenvy Quenlar Pro 3.0";

// The settings of the program as they stand in the registry.
[[nodiscard]] std::map<std::string, std::string> StoredSettings();
[[nodiscard]] std::map<std::string, std::string> StoredWebSettings();
void DeleteStoredSettings();
void StoreSetting(const std::string& name, const std::string& text);
void StoreWebSetting(const std::string& name, const std::string& text);
// The defaults with the upgrade check turned off, which would show its stages in the status bar at any moment.
void StoreDefaultsWithoutUpgradeCheck();

// Runs a command line and waits for its end; its exit status.
[[nodiscard]] int RunAndWait(const std::wstring& command_line);

// Items of the menu of the tray icon, counted from below.
enum class TrayItem { kExit = 1, kAbout, kHelp, kWindow };

// A program folder with the program in it, gone at the end. The settings are deleted at both ends.
class Program {
 public:
  Program();
  // The program that was installed into this folder; its files stay.
  explicit Program(std::filesystem::path installed);
  ~Program();  // ends the program if it still runs
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  // Downloads from other hosts go through this proxy. Before Start.
  void SetProxy(const Site& proxy);
  void WriteFile(const std::string& name, const std::string& bytes) const;  // below the program folder
  // Copies a program that lies beside the test into the program folder, under a name of its own there.
  void TakeIn(const std::string& tool, const std::string& name) const;
  [[nodiscard]] std::string ReadFile(const std::string& name) const;  // empty when there is none
  [[nodiscard]] bool HasFile(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

  // Starts the program and waits for its main window.
  void Start();
  // Ends it at once, as the task manager does.
  void Kill();
  // Starts it once more in the same folder, and waits for the end of that one. Its exit status.
  [[nodiscard]] int StartSecond();
  [[nodiscard]] bool Running() const;
  [[nodiscard]] bool WaitForEnd() const;
  [[nodiscard]] DWORD ExitStatus() const;  // after its end
  [[nodiscard]] DWORD process_id() const { return process_.dwProcessId; }
  [[nodiscard]] HANDLE process() const { return process_.hProcess; }

  // All of its top-level windows, hidden ones too.
  [[nodiscard]] std::vector<Window> Windows() const;
  // Tells each of them what the system tells it at the end of a session. False when one of them objects.
  [[nodiscard]] bool EndSession() const;
  // The program's visible windows with this caption, or with this class.
  [[nodiscard]] Window Find(const std::string& caption) const;
  [[nodiscard]] Window Main() const { return FindByClass("QuenlarMainWindow"); }
  [[nodiscard]] Window FindByClass(const std::string& name) const;  // hidden ones too
  // Waits for one; an empty window when it does not come.
  [[nodiscard]] Window WaitForWindow(const std::string& caption) const;

  // Opens the web settings by the system menu of the main window. Empty when they do not come.
  [[nodiscard]] Window OpenWebSettings() const;

  // Waits for a message box with this text and presses its button (IDOK, IDYES, IDNO). False when it does not come.
  [[nodiscard]] bool Answer(const std::string& text, int button = IDOK) const;
  [[nodiscard]] bool HasBox(const std::string& text) const;
  // The message box whose text begins so; empty when there is none.
  [[nodiscard]] Window BoxThatBegins(const std::string& text) const;

  // Opens the menu of the tray icon and chooses an item. False when the menu does not come or does not go.
  [[nodiscard]] bool ChooseInTrayMenu(TrayItem item) const;
  // What the system tells the icon's window when the mouse does something with the icon.
  void TellTray(LPARAM mouse_message) const;
  [[nodiscard]] Window TrayWindow() const { return FindByClass("QuenlarTray"); }

  // Chooses names in a file dialog with this title.
  [[nodiscard]] bool AnswerFileDialog(const std::string& title, const std::string& names) const;

 private:
  [[nodiscard]] PROCESS_INFORMATION StartProcess() const;
  [[nodiscard]] Window Box(const std::string& text) const;

  std::filesystem::path folder_;
  bool installed_ = false;
  std::string proxy_;
  PROCESS_INFORMATION process_{};
};

}  // namespace quenlar::window_test
