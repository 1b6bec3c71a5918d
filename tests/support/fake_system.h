// The small facts of the system as a test sets them: time of day, code page, network interfaces.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/windows1252.h"
#include "platform/clock.h"
#include "platform/code_page.h"
#include "platform/interface_table.h"

namespace quenlar {

class FakeClock : public Clock {
 public:
  std::string time_text = "12:34:56";
  [[nodiscard]] std::string TimeText() const override { return time_text; }

  std::int64_t utc_seconds = 1'700'000'000;
  [[nodiscard]] std::int64_t UtcSeconds() const override { return utc_seconds; }
};

// Windows-1252 on every system.
class FakeCodePage : public CodePage {
 public:
  [[nodiscard]] std::string ToUtf8(std::string bytes) const override { return Windows1252ToUtf8(std::move(bytes)); }
  [[nodiscard]] std::string FromUtf8(std::string text) const override { return Utf8ToWindows1252(std::move(text)); }
};

class FakeInterfaceTable : public InterfaceTable {
 public:
  TableOutcome outcome = TableOutcome::kRead;
  std::vector<InterfaceRow> rows;
  bool alive = true;
  int reads = 0, alive_queries = 0;

  [[nodiscard]] TableOutcome Read(std::vector<InterfaceRow>& out) override {
    ++reads;
    out.clear();
    if (outcome == TableOutcome::kRead) out = rows;
    return outcome;
  }
  [[nodiscard]] bool IsOnline() override {
    ++alive_queries;
    return alive;
  }
};

}  // namespace quenlar
