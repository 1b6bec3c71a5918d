// The text of gzip members or zstd frames that follow each other, sound or damaged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "archive/byte_source.h"
#include "platform/inflate.h"

namespace quenlar {

// How members are packed.
struct Packing {
  std::string_view magic;                  // first bytes of a member, by which the next one is looked for
  bool (*begins)(std::string_view bytes);  // whether a member may begin here
  std::function<std::unique_ptr<StreamInflater>()> make;
};
[[nodiscard]] Packing GzipPacking();
// The frames may want a dictionary. `make` gives null where the system has no such library.
[[nodiscard]] Packing ZstdPacking(std::string dictionary);

// Of a damaged member it gives what can be unpacked, and goes on with the next member that unpacks. NULs between two
// members are passed over.
class MemberSource final : public ByteSource {
 public:
  // `offset` is where `packed` stands in its file; it must stand where a member begins.
  MemberSource(ByteSource& packed, std::uint64_t offset, Packing packing = GzipPacking());

  // Fills `buffer`, but stops at the end of a member.
  [[nodiscard]] Result<std::size_t> Read(char* buffer, std::size_t size) override;

  // Whether the bytes of the last Read end where a sound member ends, and then where the next one begins.
  [[nodiscard]] bool at_member_end() const { return between_; }
  [[nodiscard]] std::uint64_t next_member() const { return offset_ + at_; }
  // Places where bytes are damaged, lost or too many.
  [[nodiscard]] std::size_t breaks() const { return breaks_; }

 private:
  [[nodiscard]] std::string_view Rest() const { return {window_.get() + at_, end_ - at_}; }
  // Gets more packed bytes, until at least `size` are there or nothing is left. Those just behind are kept.
  [[nodiscard]] Status Fill(std::size_t size);
  // Goes to the next member. False at the end.
  [[nodiscard]] Result<bool> BeginMember();
  // Goes to the first member behind `from` (a place in the window) that unpacks. False when there is none.
  [[nodiscard]] Result<bool> FindMember(std::size_t from);
  [[nodiscard]] bool Unpacks(std::string_view packed);
  [[nodiscard]] Status Break();

  ByteSource& packed_;
  const Packing packing_;
  const std::unique_ptr<StreamInflater> inflater_, trial_;
  std::unique_ptr<char[]> window_;
  std::uint64_t offset_;          // of the window in the file
  std::size_t at_ = 0, end_ = 0;  // in the window: not yet unpacked
  std::size_t member_ = 0;        // in the window: behind the first byte of the member at hand, as far as it is kept
  bool between_ = true, packed_ended_ = false, ended_ = false;
  std::size_t breaks_ = 0;
};

// Whether a gzip member may begin here, and a frame of zstd or one of those that are skipped.
[[nodiscard]] bool BeginsGzipMember(std::string_view bytes);
[[nodiscard]] bool BeginsZstdFrame(std::string_view bytes);

}  // namespace quenlar
