#include "cli/analyze_request.h"

#include <cmath>
#include <cstddef>
#include <limits>

#include <fmt/format.h>

#include "cli/base64.h"

namespace quenlar {
namespace {

using Value = nlohmann::json;

// A line within its length can still spell a hundred million empty values; these are what a request may hold.
constexpr int kDeepest = 64;
constexpr std::size_t kMostValues = 1'000'000;

Status Wrong(std::string message) { return {StatusKind::kFormat, std::move(message)}; }

// Takes the text out of a member; false where it is none.
bool TakeText(Value& object, const char* member, std::string& text) {
  Value& value = object[member];
  if (!value.is_string()) return false;
  text = std::move(value.get_ref<std::string&>());
  return true;
}

Status NotText(const char* member) { return Wrong(fmt::format("\"{}\" must be a text", member)); }

template <typename Integer>
std::optional<Integer> AsInteger(const Value& value) {
  using Limits = std::numeric_limits<Integer>;
  if (value.is_number_float()) {
    const double number = value.get<double>();
    if (number != std::floor(number) || number < Limits::min() || number > Limits::max()) return std::nullopt;
    return static_cast<Integer>(number);
  }
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (number > static_cast<std::uint64_t>(Limits::max())) return std::nullopt;
    return static_cast<Integer>(number);
  }
  if (!value.is_number_integer()) return std::nullopt;
  const auto number = value.get<std::int64_t>();
  if (number < Limits::min() || number > Limits::max()) return std::nullopt;
  return static_cast<Integer>(number);
}

std::optional<std::int32_t> AsNumber(const Value& value, bool wide) {
  if (wide) return AsInteger<std::int32_t>(value);
  return AsInteger<std::int16_t>(value);
}

std::optional<std::vector<std::string>> AsWords(Value& value) {
  if (!value.is_array()) return std::nullopt;
  std::vector<std::string> words;
  for (Value& word : value) {
    if (!word.is_string()) return std::nullopt;
    words.push_back(std::move(word.get_ref<std::string&>()));
  }
  return words;
}

Status ReadSetting(const std::string& name, Value& value, SettingsRequest& request) {
  if (name == "RemoveFilterWords" || name == "ExtractFilterWords") {
    auto& words = name == "RemoveFilterWords" ? request.remove_words : request.extract_words;
    words = AsWords(value);
    return words ? Status() : Wrong(fmt::format("\"{}\" must be an array of texts", name));
  }
  for (const SettingRow& row : SettingsTable()) {
    if (row.member.empty() || name != row.member) continue;
    const bool wide = std::holds_alternative<std::int32_t Settings::*>(row.variable);
    const auto number = AsNumber(value, wide);
    if (!number) return Wrong(fmt::format("\"{}\" must be a whole number of {} bits", name, wide ? 32 : 16));
    request.changes.push_back({&row, std::to_string(*number)});
    return Status();
  }
  return Wrong(fmt::format("\"settings\" has no member \"{}\"", name));
}

Result<AnalyzeRequest> ReadSettings(Value& line) {
  Value& settings = line["settings"];
  if (!settings.is_object()) return Wrong("\"settings\" must be an object");
  SettingsRequest request;
  for (auto& [name, value] : settings.items()) {
    if (Status read = ReadSetting(name, value, request); !read.ok()) return read;
  }
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadOpen(Value& line) {
  OpenRequest request;
  if (!TakeText(line, "open", request.text)) return NotText("open");
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadText(Value& line) {
  PageRequest request;
  if (!TakeText(line, "name", request.name)) return NotText("name");
  if (!TakeText(line, "text", request.contents)) return NotText("text");
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadBody(Value& line) {
  PageRequest request;
  std::string encoded;
  if (!TakeText(line, "name", request.name)) return NotText("name");
  if (!TakeText(line, "body", encoded)) return NotText("body");
  std::optional<std::string> bytes = DecodeBase64(encoded);
  if (!bytes) return Wrong("\"body\" must be base64");
  request.contents = std::move(*bytes);
  request.is_body = true;
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadRedirect(Value& line) {
  RedirectRequest request;
  if (!TakeText(line, "name", request.name)) return NotText("name");
  if (!TakeText(line, "redirect", request.address)) return NotText("redirect");
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadFailed(Value& line) {
  FailRequest request;
  if (!TakeText(line, "name", request.name)) return NotText("name");
  if (line["failed"] != true) return Wrong("\"failed\" must be true");
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadResolve(Value& line) {
  ResolveRequest request;
  if (!TakeText(line, "resolve", request.target)) return NotText("resolve");
  if (!TakeText(line, "page", request.page)) return NotText("page");
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadHost(Value& line) {
  HostRequest request;
  if (!TakeText(line, "host", request.address)) return NotText("host");
  return AnalyzeRequest(std::move(request));
}

Result<AnalyzeRequest> ReadSave(Value& line) {
  if (line["save"] != true) return Wrong("\"save\" must be true");
  return AnalyzeRequest(SaveRequest{});
}

Result<AnalyzeRequest> ReadReset(Value& line) {
  if (line["reset"] != true) return Wrong("\"reset\" must be true");
  return AnalyzeRequest(ResetRequest{});
}

// A request is known by its members, all of them and no other (`id` apart), in alphabetical order.
struct Shape {
  const char* members;
  Result<AnalyzeRequest> (*read)(Value& line);
};
constexpr Shape kShapes[] = {
    {"settings", ReadSettings},
    {"open", ReadOpen},
    {"name text", ReadText},
    {"body name", ReadBody},
    {"name redirect", ReadRedirect},
    {"failed name", ReadFailed},
    {"page resolve", ReadResolve},
    {"host", ReadHost},
    {"save", ReadSave},
    {"reset", ReadReset},
};

Result<AnalyzeRequest> ReadRequest(Value& line) {
  constexpr std::size_t kMostMembers = 4;
  if (line.size() > kMostMembers) return Wrong("the line has too many members");
  std::string members;
  for (const auto& [name, value] : line.items()) members += (members.empty() ? "" : " ") + name;
  for (const Shape& shape : kShapes) {
    if (members == shape.members) return shape.read(line);
  }
  if (const PageFunction function = FindPageFunction(members))
    return AnalyzeRequest(FunctionRequest{function, std::move(line)});
  return Wrong("the line is no request");
}

// Parses with the limits on depth and on the number of values; discarded where the line is no JSON or passes one.
Value ParseWithinLimits(std::string_view line, bool& too_large) {
  std::size_t values = 0;
  const auto keep = [&](int depth, Value::parse_event_t event, Value&) {
    if (event == Value::parse_event_t::object_end || event == Value::parse_event_t::array_end) return !too_large;
    too_large = too_large || depth > kDeepest || ++values > kMostValues;
    return !too_large;
  };
  return Value::parse(line, keep, /*allow_exceptions=*/false);
}

}  // namespace

ParsedLine ParseAnalyzeLine(std::string_view line) {
  bool too_large = false;
  Value value = ParseWithinLimits(line, too_large);
  if (too_large) return {std::nullopt, Wrong("the line holds too many values")};
  if (value.is_discarded()) return {std::nullopt, Wrong("the line is no JSON")};
  if (!value.is_object()) return {std::nullopt, Wrong("the line is no JSON object")};

  std::optional<Json> id;
  if (const auto found = value.find("id"); found != value.end()) {
    id = Json(*found);
    value.erase(found);
  }
  return {std::move(id), ReadRequest(value)};
}

}  // namespace quenlar
