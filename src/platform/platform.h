// All of the operating system that the program uses, as one bundle of references. Whoever builds the bundle (a main
// function, a test) owns the objects and keeps them alive for longer than the program.
#pragma once

namespace quenlar {

class EventLoop;
class PageFetcher;
class Registry;
class InterfaceTable;
class Files;
class CodePage;
class Clock;
class Shell;
class MessageBoxes;
class Idna;
class FileDialogs;
class TrayIcon;

struct Platform {
  EventLoop& loop;
  PageFetcher& fetcher;
  Registry& registry;
  InterfaceTable& interfaces;
  Files& files;
  CodePage& code_page;
  Clock& clock;
  Shell& shell;
  MessageBoxes& boxes;
  const Idna& idna;
};

// What only a program with windows has.
struct DesktopPlatform {
  FileDialogs& dialogs;
  TrayIcon& tray;
};

}  // namespace quenlar
