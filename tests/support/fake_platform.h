// One whole platform made of the fakes, for tests of anything that takes a Platform.
#pragma once

#include "platform/platform.h"
#include "support/fake_event_loop.h"
#include "support/fake_idna.h"
#include "support/fake_registry.h"
#include "support/fake_system.h"
#include "support/fake_text_decoder.h"
#include "support/in_memory_files.h"
#include "support/recorders.h"
#include "support/scripted_fetcher.h"
#include "support/scripted_web_client.h"

namespace quenlar {

struct FakePlatform {
  FakeEventLoop loop;
  ScriptedFetcher fetcher{loop};
  ScriptedWebClient web_client{loop};
  FakeRegistry registry;
  FakeInterfaceTable interfaces;
  InMemoryFiles files;
  FakeCodePage code_page;
  FakeIdna idna;
  FakeClock clock;
  FakeTextDecoder text_decoder;
  RecordingShell shell;
  RecordingBoxes boxes;
  RecordingFileDialogs dialogs;
  RecordingTray tray;

  Platform platform{loop, fetcher, registry, interfaces, files, code_page, clock, shell, boxes, idna, text_decoder};
  DesktopPlatform desktop{dialogs, tray, web_client};
};

}  // namespace quenlar
