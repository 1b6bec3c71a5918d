// The result of an operation that can fail: a kind that callers tell apart and a message for the user.
//
//   Result<std::string> text = ReadWhole(files, path);
//   if (!text.ok()) return text.status().WithContext("The filter file");
//   Use(text.value());
//
// The compiler warns where a result is dropped. A caller that does not need it says so: `.Ignore("reason")`.
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace quenlar {

enum class StatusKind {
  kOk,
  kNotFound,  // the file, folder, key or value does not exist
  kDenied,    // no permission, or the medium is read-only
  kFull,      // no space is left on the medium
  kLimit,     // a documented limit was reached (16-bit writer counts, page size, ...)
  kFormat,    // the bytes are not in the expected format
  kBusy,      // another process holds the resource
  kFailed,    // anything else that the system refused
};

// Success, or a kind of failure and a message in plain words (UTF-8). The message names the object, such as a path or
// an address, and the cause. It does not end in " !": SentenceOf adds that for the user.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(StatusKind kind, std::string message) : kind_(kind), message_(std::move(message)) {}

  static Status Ok() { return {}; }

  [[nodiscard]] bool ok() const { return kind_ == StatusKind::kOk; }
  [[nodiscard]] StatusKind kind() const { return kind_; }
  [[nodiscard]] const std::string& message() const { return message_; }

  // Returns the same failure with "what: " in front of its message. A success stays a success.
  [[nodiscard]] Status WithContext(const std::string& what) const {
    return ok() ? Status() : Status(kind_, what + ": " + message_);
  }

  // Drops the result on purpose. `reason` tells the reader of the code why that is right.
  void Ignore([[maybe_unused]] const char* reason) const {}

 private:
  StatusKind kind_ = StatusKind::kOk;
  std::string message_;
};

// Returns the message of a failure as the user reads it: with " !" at its end, added unless it stands there.
[[nodiscard]] inline std::string SentenceOf(const Status& failure) {
  return failure.message().ends_with(" !") ? failure.message() : failure.message() + " !";
}

// A value, or the status that says why there is none.
template <typename T>
class [[nodiscard]] Result {
 public:
  // Both convert implicitly, so that a function may return either a value or a failure as it is.
  Result(T value) : state_(std::move(value)) {}                                    // NOLINT
  Result(Status failure) : state_(std::move(failure)) { assert(!status().ok()); }  // NOLINT

  [[nodiscard]] bool ok() const { return std::holds_alternative<T>(state_); }
  [[nodiscard]] Status status() const { return ok() ? Status() : std::get<Status>(state_); }

  // These three may be called only when ok(). take() moves the value out.
  [[nodiscard]] T& value() { return std::get<T>(state_); }
  [[nodiscard]] const T& value() const { return std::get<T>(state_); }
  [[nodiscard]] T&& take() { return std::move(std::get<T>(state_)); }

 private:
  std::variant<T, Status> state_;
};

}  // namespace quenlar
