// Web archives: pieces cover a text without a gap, whatever it is; a text that comes in pieces has the same records;
// and an answer of any shape is read.
#include <string>
#include <vector>

#include "archive/harvest.h"
#include "archive/http_message.h"
#include "archive/record_batches.h"
#include "archive/sources.h"
#include "fuzz/target.h"
#include "support/fake_idna.h"
#include "support/fake_text_decoder.h"

using namespace quenlar;

namespace {

const FakeIdna kIdna;
const FakeTextDecoder kDecoder;

class FewBytes final : public ByteSource {
 public:
  FewBytes(std::string_view text, std::size_t piece) : text_(text), piece_(piece) {}
  [[nodiscard]] Result<std::size_t> Read(char* buffer, std::size_t size) override {
    const std::size_t got = text_.copy(buffer, std::min(size, piece_));
    text_.remove_prefix(got);
    return got;
  }

 private:
  std::string_view text_;
  const std::size_t piece_;
};

// The blocks that may be pages, by pieces of the whole text.
std::vector<std::string> WholeBlocks(std::string_view text) {
  std::vector<std::string> blocks;
  while (!text.empty()) {
    const WarcPiece piece = NextWarcPiece(text, false);
    FUZZ_CHECK(piece.kind != WarcPiece::Kind::kMore && piece.kind != WarcPiece::Kind::kLarge);
    FUZZ_CHECK(piece.size > 0 && piece.size <= text.size());
    if (piece.kind == WarcPiece::Kind::kRecord && MayHoldPage(piece.head)) blocks.emplace_back(piece.block);
    text.remove_prefix(piece.size);
  }
  return blocks;
}

std::vector<std::string> BatchedBlocks(std::string_view text, std::size_t piece) {
  FewBytes source(text, piece);
  RecordBatches batches(source, nullptr, 0);
  std::vector<std::string> blocks;
  for (;;) {
    auto batch = batches.Next();
    FUZZ_CHECK(batch.ok());
    if (!batch.value()) return blocks;
    for (const WarcRecord& record : batch.value()->records) blocks.emplace_back(record.block);
  }
}

void ReadMembers(std::string_view packed, std::size_t piece) {
  FewBytes source(packed, piece);
  MemberSource members(source, 0);
  const auto text = ReadUpTo(members, 1u << 20);
  FUZZ_CHECK(text.ok() && members.next_member() <= packed.size());
}

}  // namespace

// The first byte chooses how many bytes come at a time.
QUENLAR_FUZZ_TARGET(warc) {
  fuzz::Feed feed(bytes);
  const std::size_t piece = 1 + feed.Byte();
  const std::string_view text = feed.Rest().substr(0, 65536);
  const std::vector<std::string> blocks = WholeBlocks(text);
  FUZZ_CHECK(BatchedBlocks(text, piece) == blocks);
  ReadMembers(text, piece);
  const PageReading reading{kIdna, kDecoder};
  PageCounts counts;
  for (const std::string& block : blocks) {
    WarcRecord record;
    record.head.type = "response";
    record.head.target = "http://www.firma.de/";
    record.block = block;
    const auto page = ReadRecordPage(record, reading, counts);
    FUZZ_CHECK(!page || !page->addresses.empty());
  }
}
