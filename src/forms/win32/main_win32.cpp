// Quenlar.exe: makes the platform of Windows, ties the program's forms to windows, and runs the message loop.
#include <memory>

#include "forms/program.h"
#include "forms/win32/dialogs.h"
#include "forms/win32/resource.h"
#include "forms/win32/session_end.h"
#include "platform/win32/clock.h"
#include "platform/win32/code_page.h"
#include "platform/win32/event_loop.h"
#include "platform/win32/file_dialogs.h"
#include "platform/win32/files.h"
#include "platform/win32/idna.h"
#include "platform/win32/interface_table.h"
#include "platform/win32/message_boxes.h"
#include "platform/win32/process.h"
#include "platform/win32/registry.h"
#include "platform/win32/shell.h"
#include "platform/win32/text_decoder.h"
#include "platform/win32/tray_icon.h"
#include "platform/win32/winhttp_page_fetcher.h"
#include "platform/win32/winhttp_web_client.h"
#include "ui/win32/binder.h"
#include "ui/win32/popup_menu.h"

namespace quenlar {
namespace {

constexpr const wchar_t* kMainWindowClass = L"QuenlarMainWindow";
constexpr const wchar_t* kInstanceName = L"Local\\QuenlarInstance";

// The name by which the main window's dialog resource asks for it: a dialog like any other with a class of its own.
void RegisterMainWindowClass(HINSTANCE program) {
  WNDCLASSEXW kind{};
  kind.cbSize = sizeof kind;
  GetClassInfoExW(nullptr, MAKEINTRESOURCEW(32770), &kind);
  kind.style &= ~static_cast<UINT>(CS_GLOBALCLASS);
  kind.hInstance = program;
  kind.hIcon = LoadIconW(program, MAKEINTRESOURCEW(IDI_QUENLAR));
  kind.lpszClassName = kMainWindowClass;
  RegisterClassExW(&kind);
}

// True when the mutex is somebody else's already. It is held until the process ends. Another user's, an administrator's
// for one, cannot even be opened.
bool AnotherInstanceRuns() {
  const HANDLE mutex = CreateMutexW(nullptr, FALSE, kInstanceName);
  return GetLastError() == (mutex ? ERROR_ALREADY_EXISTS : ERROR_ACCESS_DENIED);
}

// At once: everything has been written, and the pumps that lie above are not to go on.
void EndProcess() { ExitProcess(0); }

int Run(HINSTANCE program_handle) {
  Win32EventLoop loop;
  Win32CodePage code_page;
  Win32Idna idna;
  Win32TextDecoder text_decoder;
  Win32Registry registry(code_page, Win32Registry::WritableRoot(kProjectKey));
  // The variable that other programs that download use as well.
  const std::string proxy = win32::EnvironmentValue("http_proxy").value_or("");
  const ProxyChoice choice = proxy.empty() ? ProxyChoice{} : ProxyChoice::Given(proxy);
  WinHttpPageFetcher fetcher(loop, {.proxy = choice});
  const std::unique_ptr<WebClient> web_client = MakeWinHttpWebClient(loop, choice);
  Win32InterfaceTable interfaces;
  Win32Files files;
  Win32Clock clock;
  Win32Shell shell;
  Win32MessageBoxes boxes;
  Win32FileDialogs dialogs;
  Win32TrayIcon tray(LoadImageW(program_handle, MAKEINTRESOURCEW(IDI_QUENLAR), IMAGE_ICON,
                                GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON), LR_SHARED));
  Installation installation;
  installation.program_folder = win32::ProgramFolder();
  installation.separator = '\\';

  Program program({loop, fetcher, registry, interfaces, files, code_page, clock, shell, boxes, idna, text_decoder},
                  {dialogs, tray, *web_client}, installation, {AnotherInstanceRuns, EndProcess});
  ui::Binder binder(ProgramResources(program_handle), loop);
  for (ui::Form* form : program.Windows()) binder.Bind(*form);
  loop.AddMessageFilter([&binder](void* message) { return binder.FilterMessage(*static_cast<MSG*>(message)); });
  program.tray.mnuPopup.show = [&tray](const std::vector<ui::MenuItem*>& items) {
    ui::ShowPopupMenu(static_cast<HWND>(tray.window()), items);
  };
  const ui::SessionEnd session_end(program_handle, [&program] { program.SaveRun(); });

  if (!program.Start()) return 0;
  while (!loop.quit_requested()) loop.Wait(std::chrono::hours(1));
  return 0;
}

}  // namespace
}  // namespace quenlar

int WINAPI wWinMain(HINSTANCE program, HINSTANCE, PWSTR, int) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
  InitCommonControlsEx(&controls);
  // For what the shell loads when it opens a file or a page.
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  quenlar::RegisterMainWindowClass(program);
  const int status = quenlar::Run(program);
  CoUninitialize();
  return status;
}
