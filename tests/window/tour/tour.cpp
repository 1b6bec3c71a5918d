// Opens every window of the program, one after the other, for pictures of them: prints the file name of a picture, a
// tab and the window's caption, or a tab more and the part of the screen (WIDTHxHEIGHT+X+Y) instead, and goes on at the
// next line of input. usage: window_tour.exe [main|web]
#include <iostream>
#include <stdexcept>
#include <string>

#include "run/end_reasons.h"
#include "state/settings.h"
#include "window/program.h"

namespace quenlar::window_test {
namespace {

constexpr int kPages = 40;
constexpr int kPeopleOnAPage = 3;
constexpr int kPageWithoutText = 3;  // its only address stands in a tag
constexpr int kRows = (kPages - 1) * kPeopleOnAPage + 1;

void Expect(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

void Picture(const std::string& name, const std::string& caption) {
  std::cout << name << '\t' << caption << std::endl;
  std::string line;
  std::getline(std::cin, line);
}

void Picture(const std::string& name, const RECT& part) {
  const auto text = [](LONG number) { return std::to_string(number); };
  Picture(name, '\t' + text(part.right - part.left) + 'x' + text(part.bottom - part.top) + '+' + text(part.left) + '+' +
                    text(part.top));
}

// The menu that is open.
Window WaitForMenu() {
  HWND menu = nullptr;
  Expect(WaitUntil([&] { return (menu = FindWindowW(L"#32768", nullptr)) != nullptr && IsWindowVisible(menu); }),
         "no menu");
  return Window(menu);
}

// A club's web site with invented people.
void FillSite(Site& site) {
  const char* kNames[] = {"anna", "bruno", "clara", "daniel", "elena", "felix", "greta", "hugo", "irene", "jonas"};
  for (int page = 0; page < kPages; ++page) {
    const std::string number = std::to_string(page + 1);
    std::string body = "<title>Chess club, section " + number + "</title>";
    if (page + 1 == kPageWithoutText) body += "<form><input value=\"board@chess.test\"></form>";
    for (int i = 0; page + 1 != kPageWithoutText && i < kPeopleOnAPage; ++i) {
      body += "<p>Ask " + std::string(kNames[(page * kPeopleOnAPage + i) % 10]) + number + "@chess.test for a game. ";
    }
    body += "<hr>";
    for (int other = 2; page == 0 && other <= kPages + 1; ++other) {
      body += "<a href=\"/section" + std::to_string(other) + ".html\">section " + std::to_string(other) + "</a>";
    }
    site.SetPage("http://www.chess.example/section" + number + ".html", body);
    if (page == 0) site.SetPage("http://www.chess.example", body);
    if (page == 0) site.SetPage("http://www.chess.example/", body);
  }
  site.SetSilent("http://www.chess.example/section" + std::to_string(kPages + 1) + ".html");
  site.SetPage(kUpgradePage, "3.1\r\n");
}

// A club's web site for a collection: the secretary stands on each page, one page is for members, one never comes.
void FillClub(Site& site) {
  const std::string club = "http://www.club.example";
  const auto page = [&](const std::string& path, const std::string& title, const std::string& text) {
    site.SetPage(club + path, "<title>Rowing club: " + title + "</title>" + text +
                                  "<p>Questions? <a href=\"mailto:secretary@club.example\">Write to us</a>");
  };
  site.SetPage(club + "/robots.txt", "User-agent: *\nDisallow: /members\n");
  page("/", "welcome",
       "<a href=/board.html>Board</a> <a href=/youth.html>Youth</a> <a href=/boats.html>Boats</a> "
       "<a href=/members.html>Members</a> <a href=/late.html>News</a> info@club.example");
  page("/board.html", "the board", "<p>chair@club.example <p>treasurer@club.example <p>nina [at] club [dot] example");
  page("/youth.html", "the youth", "<p>Ask coach@club.example or otto.reed@club.example.");
  page("/boats.html", "our boats", "<p>boatman@club.example");
  site.SetSilent(club + "/late.html");
}
constexpr int kClubRows = 7;

// As Shift+F10 does: below the row that has the focus, wherever the mouse is.
Window OpenMenu(const Window& main, const Window& list) {
  PostMessageW(main.handle(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list.handle()), -1);
  return WaitForMenu();
}

void ShowRun(const Program& program) {
  const Window main = program.Main();
  Picture("main-empty", kCaption);
  main.Control("cmbURL").Type("www.chess.example");
  main.Control("cmdExtract").Click();
  Expect(WaitUntil([&] { return main.Control("lstMail").Rows() == kRows; }), "no rows");
  Picture("main-running", kCaption);
  main.Control("cmdExtract").Click();
  Expect(WaitUntil([&] { return program.HasBox(kEndStopButton); }), "no end");
  Picture("message", main.Place());
  Expect(program.Answer(kEndStopButton), "no answer");
  Expect(WaitUntil([&] { return main.Control("cmdExtract").Enabled(); }), "not idle");
  const Window list = main.Control("lstMail");
  list.MarkRow(2);
  main.Send(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(list.handle()), TRUE);
  Picture("main", kCaption);
  (void)OpenMenu(main, list);
  Picture("main-menu", main.Place());
  main.Press(VK_ESCAPE);
}

void ShowSmallest(const Program& program) {
  const Window main = program.Main();
  const RECT before = main.Place();
  SetWindowPos(main.handle(), nullptr, 0, 0, 1, 1, SWP_NOZORDER | SWP_NOMOVE | SWP_NOACTIVATE);
  Picture("main-smallest", kCaption);
  SetWindowPos(main.handle(), nullptr, before.left, before.top, before.right - before.left, before.bottom - before.top,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

void ShowOption(const Program& program) {
  program.Main().Control("cmdOption").Click();
  const Window option = program.WaitForWindow("Option");
  Expect(static_cast<bool>(option), "no options");
  Picture("option-search", "Option");
  option.Control("tabOption").Send(TCM_SETCURFOCUS, 1);
  Picture("option-export", "Option");
  option.Control("tabOption").Send(TCM_SETCURFOCUS, 2);
  Picture("option-filter", "Option");
  option.Close();
  Expect(WaitUntil([&] { return !option && program.Main().Enabled(); }), "options stay");
}

void ShowWebSettings(const Program& program) {
  const Window main = program.Main();
  PostMessageW(main.handle(), WM_SYSCOMMAND, SC_KEYMENU, ' ');
  (void)WaitForMenu();
  Picture("system-menu", main.Place());
  main.Press(VK_ESCAPE);
  const Window web = program.OpenWebSettings();
  Expect(static_cast<bool>(web), "no web settings");
  web.Control("txtContact").Type("https://me.example/collecting");
  Picture("web-general", "Web settings");
  web.Control("tabWeb").Send(TCM_SETCURFOCUS, 1);
  Picture("web-reach", "Web settings");
  web.Control("tabWeb").Send(TCM_SETCURFOCUS, 2);
  Picture("web-manners", "Web settings");
  web.Control("tabWeb").Send(TCM_SETCURFOCUS, 3);
  Picture("web-never", "Web settings");
  web.Close();
  Expect(WaitUntil([&] { return !web && program.Main().Enabled(); }), "web settings stay");
}

void SwitchCollectingOn(const Program& program) {
  const Window web = program.OpenWebSettings();
  Expect(static_cast<bool>(web), "no web settings");
  web.Control("chkCollect").Click();
  Expect(WaitUntil([&] { return web.Control("chkCollect").Checked(); }), "not on");
  web.Control("txtContact").Type("https://me.example/collecting");
  web.Control("txtPause").Type("0");
  web.Control(IDOK).Click();
  Expect(WaitUntil([&] { return !web && program.Main().Enabled(); }), "web settings stay");
}

void CloseBox(const Window& box) {
  box.Control(IDCANCEL).Click();
  Expect(WaitUntil([&] { return !box; }), "the window stays");
}

void ShowCollection(const Program& program) {
  SwitchCollectingOn(program);
  const Window main = program.Main(), list = main.Control("lstMail");
  Expect(WaitUntil([&] { return list.Rows() == 0; }), "the classic rows stay");
  main.Control("cmbURL").Type("http://www.club.example/");
  main.Control("cmdExtract").Click();
  Expect(WaitUntil([&] { return list.Rows() == kClubRows; }), "no rows");
  main.Control("cmdExtract").Click();
  Window end;
  Expect(WaitUntil([&] { return static_cast<bool>(end = program.BoxThatBegins(kEndStopButton)); }), "no end");
  Picture("collecting-end", main.Place());
  end.Control(IDOK).Click();
  Expect(WaitUntil([&] { return !end && main.Control("cmdExtract").Enabled(); }), "not idle");
  const auto choose = [&](char key) {
    list.MouseClick(list.RowPlace(1));
    Expect(WaitUntil([&] { return list.MarkedRows() == std::vector<int>{1}; }), "no mark");
    const Window menu = OpenMenu(main, list);
    if (key == 0) {
      Picture("collecting-menu", main.Place());
      main.Press(VK_ESCAPE);
    } else {
      PostMessageW(menu.handle(), WM_CHAR, static_cast<WPARAM>(key), 0);
    }
    Expect(WaitUntil([&] { return !menu.Visible(); }), "the menu stays");  // the next one is another
  };
  choose(0);
  choose('w');
  const Window sightings = program.WaitForWindow("Where it was found");
  Expect(static_cast<bool>(sightings), "no sightings");
  Picture("sightings", "Where it was found");
  CloseBox(sightings);
  choose('y');
  const Window why = program.WaitForWindow("Why ?");
  Expect(static_cast<bool>(why), "no answer");
  why.Control("txtWhat").Type("http://www.club.example/members.html");
  why.Control("cmdAsk").Click();
  Expect(WaitUntil([&] { return why.Control("txtAnswer").Text().find("robots.txt") != std::string::npos; }), "no why");
  Picture("why", "Why ?");
  CloseBox(why);
}

void ShowTool(const Program& program) {
  const char* kTool = "Mailing List Management Tool";
  program.WriteFile("report/friends.txt", "anna1@chess.test\r\nZoe@garden.test\r\nyves@garden.test\r\n");
  program.Main().Control("cmdTool").Click();
  const Window tool = program.WaitForWindow(kTool);
  Expect(static_cast<bool>(tool), "no tool");
  const auto open = [&](const char* names, const char* picture = nullptr) {
    tool.Control("cmdOpen").Click();
    Expect(static_cast<bool>(program.WaitForWindow("Open")), "no file dialog");
    if (picture) Picture(picture, "Open");
    Expect(program.AnswerFileDialog("Open", names), "no answer");
  };
  open("\"friends.txt\" \"chess_example.rpt\"", "tool-open");
  Expect(WaitUntil([&] { return tool.Control("cmdExtract").Enabled(); }), "no books");
  tool.Control("cmdExtract").Click();
  Expect(WaitUntil([&] { return tool.Control("cmdSave").Enabled(); }), "no addresses");
  open("friends.txt");
  Expect(WaitUntil([&] { return tool.Control("cmdExtract").Enabled(); }), "no books");
  Picture("tool", kTool);
  tool.Control("cmdSave").Click();
  const Window save = program.WaitForWindow("Save As");
  Expect(static_cast<bool>(save), "no file dialog");
  Picture("tool-save", "Save As");
  save.Close();
  Expect(program.Answer("Canceled selection !"), "no answer");
  tool.Close();
  Expect(WaitUntil([&] { return !tool && program.Main().Enabled(); }), "the tool stays");
}

void ShowTrayMenu(const Program& program) {
  program.TellTray(WM_RBUTTONDOWN);
  Picture("tray-menu", WaitForMenu().Place());
  program.TrayWindow().Press(VK_ESCAPE);
}

void ShowBoxes(const Program& program) {
  const char* kAbout = "About Brenvy Quenlar Pro 3.0";
  const char* kHelp = "Brenvy Quenlar Pro Online Help";
  Expect(program.ChooseInTrayMenu(TrayItem::kAbout), "no menu");
  Expect(static_cast<bool>(program.WaitForWindow(kAbout)), "no about box");
  Picture("about", kAbout);
  program.Find(kAbout).Close();
  Expect(program.ChooseInTrayMenu(TrayItem::kHelp), "no menu");
  Expect(static_cast<bool>(program.WaitForWindow(kHelp)), "no help box");
  Picture("help", kHelp);
  program.Find(kHelp).Close();
}

void Tour(const std::string& what) {
  const bool only_main = what == "main";
  const char* kUpgrade = "Brenvy Quenlar Pro 3.0 Upgrade";
  Site site;
  FillSite(site);
  FillClub(site);
  Program program;
  program.SetProxy(site);
  program.WriteFile("suppressed.txt", "anna@old.example\n@partners.example\n");
  program.WriteFile("data/ExtractFilter.dat", "\r\n<r>noreply</r>\r\n<r>*test*</r>\r\n<e>chess</e>\r\n");
  program.Start();
  Expect(static_cast<bool>(program.WaitForWindow(kUpgrade)), "no upgrade dialog");
  if (what.empty()) Picture("upgrade", kUpgrade);
  program.Find(kUpgrade).Close();
  Expect(WaitUntil([&] { return !program.Find(kUpgrade); }), "the upgrade dialog stays");
  if (what == "web") {
    ShowWebSettings(program);
    return ShowCollection(program);
  }
  ShowRun(program);
  if (only_main) return;
  ShowSmallest(program);
  ShowOption(program);
  ShowWebSettings(program);
  ShowTool(program);
  ShowTrayMenu(program);
  ShowBoxes(program);
  ShowCollection(program);
}

}  // namespace
}  // namespace quenlar::window_test

int main(int count, char** arguments) {
  try {
    quenlar::window_test::Tour(count > 1 ? arguments[1] : "");
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "window_tour: " << error.what() << '\n';
    return 1;
  }
}
