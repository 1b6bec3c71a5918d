// Everything of the operating system that the program uses, as one bundle of references. A main function or a test
// builds the bundle. It owns the objects and keeps them alive for longer than the program.
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
class TextDecoder;
class FileDialogs;
class TrayIcon;
class WebClient;

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
  const TextDecoder& text_decoder;
};

// What only a program with windows needs.
struct DesktopPlatform {
  FileDialogs& dialogs;
  TrayIcon& tray;
  WebClient& web_client;
};

}  // namespace quenlar
