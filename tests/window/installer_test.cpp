// The installer: installs silently for one user, the installed program runs, the uninstaller leaves the user's files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/handle.h"
#include "run/end_reasons.h"
#include "window/program.h"

namespace quenlar::window_test {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kUninstallKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Quenlar";

struct InstallerTest : testing::Test {
  std::wstring installer;
  fs::path local = _wgetenv(L"LOCALAPPDATA");
  fs::path folder = local / "Programs" / "Quenlar";
  fs::path shortcut = fs::path(_wgetenv(L"APPDATA")) / "Microsoft/Windows/Start Menu/Programs/Brenvy Quenlar Pro.lnk";

  InstallerTest() {
    const wchar_t* given = _wgetenv(L"QUENLAR_INSTALLER");
    if (!given) throw std::runtime_error("QUENLAR_INSTALLER names no installer to test");
    installer = L"\"" + std::wstring(given) + L"\" /S";
  }
  ~InstallerTest() override { (void)Uninstall(); }

  [[nodiscard]] int Uninstall() const {
    // With this argument the uninstaller does not hand over to a copy of itself, so its end is the end.
    return RunAndWait(L"\"" + (folder / "Uninstall.exe").wstring() + L"\" /S _?=" + folder.wstring());
  }
  [[nodiscard]] static std::string Registered(const wchar_t* value) {
    wchar_t text[512] = L"";
    DWORD bytes = sizeof text;
    RegGetValueW(HKEY_CURRENT_USER, kUninstallKey, value, RRF_RT_REG_SZ, nullptr, text, &bytes);
    return Utf8(text);
  }
};

TEST_F(InstallerTest, InstallsForOneUserAndTheProgramRuns) {
  ASSERT_EQ(RunAndWait(installer), 0);
  for (const char* file : {"Quenlar.exe", "quenlar-cli.exe", "README.txt", "LICENSE.txt", "Uninstall.exe"}) {
    EXPECT_TRUE(fs::exists(folder / file)) << file;
  }
  EXPECT_TRUE(fs::exists(shortcut));
  EXPECT_EQ(Registered(L"DisplayName"), "Brenvy Quenlar Pro");
  EXPECT_EQ(fs::path(Registered(L"InstallLocation")), folder);

  Site site;
  site.SetPage("http://www.cars.example", "<title>Cars</title> Write to someone@cars.test <p>");
  site.SetPage("http://www.cars.example/", "<title>Cars</title> Write to someone@cars.test <p>");
  Program program(folder);
  StoreDefaultsWithoutUpgradeCheck();
  program.SetProxy(site);
  program.Start();
  const Window main = program.Main();
  main.Control("cmbURL").Type("www.cars.example");
  ASSERT_TRUE(WaitUntil([&] { return main.Control("cmbURL").Text() == "www.cars.example"; }));
  main.Control("cmdExtract").Click();
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  EXPECT_TRUE(WaitUntil(
      [&] { return program.ReadFile("report/cars_example.rpt").find("someone@cars.test\r\n") != std::string::npos; }));
  EXPECT_EQ(RunAndWait(L"\"" + (folder / "quenlar-cli.exe").wstring() + L"\" --version"), 0);

  EXPECT_EQ(RunAndWait(installer), 2) << "the program is running";
  EXPECT_EQ(Uninstall(), 2) << "the program is running";
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kExit));
  ASSERT_TRUE(program.WaitForEnd());
}

TEST_F(InstallerTest, UninstallingLeavesTheUsersFiles) {
  ASSERT_EQ(RunAndWait(installer), 0);
  Program program(folder);
  program.WriteFile("report/mine.rpt", "mine");
  EXPECT_EQ(Uninstall(), 0);
  EXPECT_FALSE(fs::exists(folder / "Quenlar.exe"));
  EXPECT_FALSE(fs::exists(folder / "quenlar-cli.exe"));
  EXPECT_FALSE(fs::exists(shortcut));
  EXPECT_EQ(Registered(L"DisplayName"), "");
  EXPECT_EQ(program.ReadFile("report/mine.rpt"), "mine");
}

TEST_F(InstallerTest, InstallingAgainReplacesTheProgramAndKeepsTheProjects) {
  ASSERT_EQ(RunAndWait(installer), 0);
  Program program(folder);
  program.WriteFile("data/mine.dat", "mine");
  program.WriteFile("Quenlar.exe", "an old one");
  ASSERT_EQ(RunAndWait(installer), 0);
  EXPECT_EQ(program.ReadFile("data/mine.dat"), "mine");
  program.Start();
  EXPECT_TRUE(program.Main().Visible());
}

TEST_F(InstallerTest, AFileThatIsInUseStopsTheInstallation) {
  ASSERT_EQ(RunAndWait(installer), 0);
  win32::Handle in_use(CreateFileW((folder / "quenlar-cli.exe").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                   OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(in_use.valid());
  EXPECT_EQ(RunAndWait(installer), 2);
  in_use.Close();
  EXPECT_EQ(RunAndWait(installer), 0);
}

// As that of a program that the system or an administrator has started.
TEST_F(InstallerTest, AProgramOfAnotherUserCountsAsRunning) {
  alignas(SID) std::byte system[SECURITY_MAX_SID_SIZE];
  DWORD bytes = sizeof system;
  ASSERT_TRUE(CreateWellKnownSid(WinLocalSystemSid, nullptr, system, &bytes));
  SECURITY_DESCRIPTOR others;
  ACL nobody;
  ASSERT_TRUE(InitializeSecurityDescriptor(&others, SECURITY_DESCRIPTOR_REVISION));
  ASSERT_TRUE(SetSecurityDescriptorOwner(&others, system, FALSE));
  ASSERT_TRUE(SetSecurityDescriptorGroup(&others, system, FALSE));
  ASSERT_TRUE(InitializeAcl(&nobody, sizeof nobody, ACL_REVISION));
  ASSERT_TRUE(SetSecurityDescriptorDacl(&others, TRUE, &nobody, FALSE));
  SECURITY_ATTRIBUTES attributes{sizeof attributes, &others, FALSE};
  const win32::Handle running(CreateMutexW(&attributes, FALSE, L"Local\\QuenlarInstance"));
  ASSERT_TRUE(running.valid());
  const win32::Handle opened(OpenMutexW(SYNCHRONIZE, FALSE, L"Local\\QuenlarInstance"));
  ASSERT_FALSE(opened.valid());
  EXPECT_EQ(RunAndWait(installer), 2);
  EXPECT_FALSE(fs::exists(folder / "Quenlar.exe"));
}

}  // namespace
}  // namespace quenlar::window_test
