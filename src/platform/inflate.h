// Unpacks gzip members (RFC 1952), in one go or piece by piece, and the like. platform/posix and platform/win32 each
// define the functions at the end by the libraries that are the fastest there (docs/archives.md).
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace quenlar {

// Unpacks a whole member at once. An object is for one thread at a time.
class MemberInflater {
 public:
  enum class Outcome {
    kDone,    // a member stands at the beginning of `in`, and its checksum is right
    kNoRoom,  // there is more in it than `out` has room for
    kBroken,  // no member, a damaged one, or one that goes on behind `in`
  };
  struct Step {
    Outcome outcome;
    std::size_t taken, given;  // where it is done: bytes of `in`, bytes of `out`
  };

  virtual ~MemberInflater() = default;
  [[nodiscard]] virtual Step Inflate(std::string_view in, char* out, std::size_t room) = 0;
};

// Unpacks a member, or a frame, piece by piece, and of a damaged one what stands before the damage. An object is for
// one thread at a time.
class StreamInflater {
 public:
  enum class Outcome {
    kGoesOn,  // it wants more of `in`, or more room
    kEnd,     // the member is complete
    kBroken,  // no member, or a damaged one; `out` has what could be unpacked
  };
  struct Step {
    Outcome outcome;
    std::size_t taken, given;
  };

  virtual ~StreamInflater() = default;
  // Makes ready for a new member.
  virtual void Begin() = 0;
  // Call it again with what was not taken and with more, until the member has ended.
  [[nodiscard]] virtual Step Inflate(std::string_view in, char* out, std::size_t room) = 0;
};

[[nodiscard]] std::unique_ptr<MemberInflater> MakeMemberInflater();
[[nodiscard]] std::unique_ptr<StreamInflater> MakeStreamInflater();

// The same for brotli (RFC 7932) and for frames of zstd (RFC 8878), with a dictionary or without. Null where the system
// has no such library.
[[nodiscard]] std::unique_ptr<StreamInflater> MakeBrotliInflater();
[[nodiscard]] std::unique_ptr<StreamInflater> MakeZstdInflater(std::string_view dictionary);

}  // namespace quenlar
