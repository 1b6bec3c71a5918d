#include "window/program.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "project/project_list.h"
#include "settings/settings_store.h"
#include "settings/web_settings.h"

namespace quenlar::window_test {
namespace {

namespace fs = std::filesystem;

// The message by which the icon tells its window about the mouse, and what it carries for the right button.
constexpr UINT kTrayMessage = 512;
constexpr LPARAM kRightButtonDown = 516;
constexpr int kFileNameBox = 0x47C;

std::map<std::string, std::string> ValuesOf(const char* path) {
  std::map<std::string, std::string> values;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, Wide(path).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return values;
  for (DWORD i = 0;; ++i) {
    wchar_t name[256], text[1024];
    DWORD name_units = std::size(name), bytes = sizeof text, type = 0;
    if (RegEnumValueW(key, i, name, &name_units, nullptr, &type, reinterpret_cast<BYTE*>(text), &bytes) !=
        ERROR_SUCCESS) {
      break;
    }
    std::wstring value(text, bytes / sizeof(wchar_t));
    value.resize(std::min(value.size(), value.find(L'\0')));
    values[Utf8(name)] = Utf8(value);
  }
  RegCloseKey(key);
  return values;
}

void StoreValue(const char* path, const std::string& name, const std::string& text) {
  const std::wstring value = Wide(text);
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, Wide(path).c_str(), Wide(name).c_str(), REG_SZ, value.c_str(),
                  static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

fs::path FolderOfTheTest() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return fs::path(path).parent_path();
}

fs::path ProgramUnderTest() {
  const wchar_t* path = _wgetenv(L"QUENLAR_PROGRAM");
  if (!path) throw std::runtime_error("QUENLAR_PROGRAM names no program to test");
  return path;
}

// What a test that was killed has left is passed over.
fs::path NewFolder() {
  for (int count = 1;; ++count) {
    const fs::path folder = fs::temp_directory_path() / ("quenlar test " + std::to_string(count));
    if (fs::create_directory(folder)) return folder;
  }
}

}  // namespace

std::map<std::string, std::string> StoredSettings() { return ValuesOf(kProjectKey); }

std::map<std::string, std::string> StoredWebSettings() { return ValuesOf(kWebKey); }

void DeleteStoredSettings() {
  for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    for (const char* key : {kProjectKey, kWebKey}) RegDeleteTreeW(root, Wide(key).c_str());
  }
}

void StoreSetting(const std::string& name, const std::string& text) { StoreValue(kProjectKey, name, text); }

void StoreWebSetting(const std::string& name, const std::string& text) { StoreValue(kWebKey, name, text); }

void StoreDefaultsWithoutUpgradeCheck() {
  StoreSetting("ProjectNum", "0");
  StoreSetting("NeverUpgrade", "1");
  StoreSetting("Correlation", "1");
  StoreSetting("StopNumber", "99999");
}

int RunAndWait(const std::wstring& command_line) {
  std::wstring line = command_line;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) return -1;
  WaitForSingleObject(process.hProcess, 120000);
  DWORD status = STILL_ACTIVE;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(status);
}

Program::Program() : folder_(NewFolder()) {
  fs::copy_file(ProgramUnderTest(), folder_ / "Quenlar.exe");
  DeleteStoredSettings();
}

Program::Program(fs::path installed) : folder_(std::move(installed)), installed_(true) { DeleteStoredSettings(); }

Program::~Program() {
  if (Running()) Kill();
  if (process_.hProcess) CloseHandle(process_.hProcess);
  DeleteStoredSettings();
  std::error_code ignored;
  if (!installed_) fs::remove_all(folder_, ignored);
}

void Program::SetProxy(const Site& proxy) { proxy_ = "127.0.0.1:" + std::to_string(proxy.port()); }

void Program::WriteFile(const std::string& name, const std::string& bytes) const {
  fs::create_directories((folder_ / name).parent_path());
  std::ofstream(folder_ / name, std::ios::binary) << bytes;
}

void Program::TakeIn(const std::string& tool, const std::string& name) const {
  fs::copy_file(FolderOfTheTest() / tool, folder_ / name);
}

std::string Program::ReadFile(const std::string& name) const {
  std::ifstream file(folder_ / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

PROCESS_INFORMATION Program::StartProcess() const {
  const std::wstring proxy = Wide("http://" + proxy_);
  SetEnvironmentVariableW(L"http_proxy", proxy_.empty() ? nullptr : proxy.c_str());
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW((folder_ / "Quenlar.exe").c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                      &process)) {
    throw std::runtime_error("the program does not start");
  }
  CloseHandle(process.hThread);
  return process;
}

void Program::Start() {
  process_ = StartProcess();
  if (!WaitForWindow(kCaption)) throw std::runtime_error("the main window does not come");
}

void Program::Kill() {
  TerminateProcess(process_.hProcess, 1);
  WaitForSingleObject(process_.hProcess, INFINITE);
}

int Program::StartSecond() {
  const PROCESS_INFORMATION second = StartProcess();
  WaitForSingleObject(second.hProcess, 60000);
  DWORD status = STILL_ACTIVE;
  GetExitCodeProcess(second.hProcess, &status);
  CloseHandle(second.hProcess);
  return static_cast<int>(status);
}

bool Program::Running() const { return process_.hProcess && WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT; }

bool Program::WaitForEnd() const { return WaitForSingleObject(process_.hProcess, 60000) == WAIT_OBJECT_0; }

DWORD Program::ExitStatus() const {
  DWORD status = 0;
  if (!GetExitCodeProcess(process_.hProcess, &status)) throw std::runtime_error("the program has no exit status");
  return status;
}

std::vector<Window> Program::Windows() const {
  struct Search {
    DWORD process_id;
    std::vector<Window> found;
  } search{process_.dwProcessId, {}};
  EnumWindows(
      [](HWND window, LPARAM l) -> BOOL {
        auto& wanted = *reinterpret_cast<Search*>(l);
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if (owner == wanted.process_id) wanted.found.emplace_back(window);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

bool Program::EndSession() const {
  const std::vector<Window> windows = Windows();
  for (const Window& window : windows) {
    if (window.Send(WM_QUERYENDSESSION) != TRUE) return false;
  }
  for (const Window& window : windows) window.Send(WM_ENDSESSION, TRUE);
  return true;
}

Window Program::Find(const std::string& caption) const {
  for (const Window& window : Windows()) {
    if (window.Visible() && window.Text() == caption && !GetDlgItem(window.handle(), 0xFFFF)) return window;
  }
  return {};
}

Window Program::FindByClass(const std::string& name) const {
  for (const Window& window : Windows()) {
    if (window.ClassName() == name) return window;
  }
  return {};
}

Window Program::WaitForWindow(const std::string& caption) const {
  Window found;
  (void)WaitUntil([&] { return static_cast<bool>(found = Find(caption)) || !Running(); });
  return found;
}

Window Program::OpenWebSettings() const {
  PostMessageW(Main().handle(), WM_SYSCOMMAND, ui::SystemMenuNumber(0), 0);
  return WaitForWindow("Web settings");
}

// A message box keeps its text in the control 0xFFFF.
Window Program::Box(const std::string& text) const {
  for (const Window& window : Windows()) {
    const HWND words = GetDlgItem(window.handle(), 0xFFFF);
    if (window.Visible() && window.ClassName() == "#32770" && words && Window(words).Text() == text) return window;
  }
  return {};
}

Window Program::BoxThatBegins(const std::string& text) const {
  for (const Window& window : Windows()) {
    const HWND words = GetDlgItem(window.handle(), 0xFFFF);
    if (!window.Visible() || window.ClassName() != "#32770" || !words) continue;
    if (Window(words).Text().starts_with(text)) return window;
  }
  return {};
}

bool Program::HasBox(const std::string& text) const { return static_cast<bool>(Box(text)); }

bool Program::Answer(const std::string& text, int button) const {
  Window box;
  if (!WaitUntil([&] { return static_cast<bool>(box = Box(text)); })) return false;
  Window(GetDlgItem(box.handle(), button)).Click();
  return WaitUntil([&] { return !box; });
}

void Program::TellTray(LPARAM mouse_message) const {
  PostMessageW(TrayWindow().handle(), kTrayMessage, 1, mouse_message);
}

bool Program::ChooseInTrayMenu(TrayItem item) const {
  const auto open = [] {
    const HWND menu = FindWindowW(L"#32768", nullptr);
    return menu && IsWindowVisible(menu);
  };
  TellTray(kRightButtonDown);
  if (!WaitUntil(open)) return false;
  const Window tray = TrayWindow();
  for (int i = 0; i < static_cast<int>(item); ++i) tray.Press(VK_UP);
  tray.PressLetter('\r');  // the key itself would become this only behind the next key
  tray.Press(VK_ESCAPE);   // a disabled item cannot be chosen, and the menu stays
  return WaitUntil([&] { return !open(); });
}

bool Program::AnswerFileDialog(const std::string& title, const std::string& names) const {
  const Window dialog = WaitForWindow(title);
  if (!dialog) return false;
  if (!WaitUntil([&] { return static_cast<bool>(dialog.Control(kFileNameBox)); })) return false;
  dialog.Control(kFileNameBox).Send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Wide(names).c_str()));
  dialog.Control(IDOK).Click();
  return WaitUntil([&] { return !dialog; });
}

}  // namespace quenlar::window_test
