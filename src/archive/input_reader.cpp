#include "archive/input_reader.h"

#include <algorithm>
#include <utility>

#include "archive/unpack_body.h"

namespace quenlar {
namespace {

constexpr std::uint64_t kSpan = 512u << 10;    // packed bytes
constexpr std::size_t kSpanWeight = 2u << 20;  // bytes: packed ones, and the text of the larger members

void ReadInto(HarvestPortion& portion, const WarcRecord& record, const PageReading& reading) {
  if (std::optional<HarvestedPage> page = ReadRecordPage(record, reading, portion.counts)) {
    portion.pages.push_back(std::move(*page));
  }
}

HarvestWork Finished(HarvestPortion portion) {
  return
      [portion = std::make_shared<HarvestPortion>(std::move(portion))](HarvestTools&) { return std::move(*portion); };
}

}  // namespace

InputReader::InputReader(const HarvestInput& input, const ReadableFile* file, ByteSource& rest, std::string beginning,
                         const HarvestPlace& place, const PageReading& reading)
    : name_(input.name),
      named_(input.named),
      file_(file),
      reading_(reading),
      place_(place),
      packed_(std::move(beginning), rest),
      beginning_(packed_.beginning()) {}

InputKind InputReader::KindOf(std::string_view beginning) const {
  return file_ == nullptr ? KindOfStream(beginning) : KindOfInput(beginning);
}

InputReader::Step InputReader::Next(HarvestWork& work, std::size_t& weight) {
  weight = 0;
  if (way_ == Way::kUnknown) {
    if (const Status begun = Begin(); !begun.ok()) {
      way_ = Way::kEnd;
      HarvestPortion failed;
      failed.failure = begun;
      work = Finished(std::move(failed));
      return Step::kWork;
    }
  }
  switch (way_) {
    case Way::kPage:
      return NextPage(work, weight);
    case Way::kRecords:
      return NextBatch(work, weight);
    case Way::kSpans:
      return NextSpan(work, weight);
    case Way::kUnknown:
    case Way::kEnd:
      break;
  }
  return Step::kEnd;
}

Status InputReader::Begin() {
  kind_ = KindOf(beginning_);
  way_ = Way::kEnd;
  if (kind_ == InputKind::kGzip) {
    members_ = std::make_unique<MemberSource>(packed_, 0);
    return BeginPacked(file_ != nullptr);
  }
  if (kind_ == InputKind::kZstd) return BeginZstd();
  if (kind_ == InputKind::kHtml || kind_ == InputKind::kText) way_ = Way::kPage;
  if (kind_ != InputKind::kWarc) return Status::Ok();
  if (file_ != nullptr) file_source_ = std::make_unique<FileSource>(*file_, place_.offset);
  BeginRecords(file_ != nullptr ? static_cast<ByteSource&>(*file_source_) : packed_, {place_.offset, 0});
  return Status::Ok();
}

// Web archives packed by zstd begin with a frame that decoders skip, with a dictionary for all others in it, which may
// be packed by itself.
Status InputReader::BeginZstd() {
  constexpr std::size_t kMostDictionary = 16u << 20;
  std::string dictionary;
  if (beginning_.starts_with("\x5D\x2A\x4D\x18")) {
    Result<std::string> head = ReadUpTo(packed_, 8);
    if (!head.ok()) return head.status();
    std::size_t size = 0;
    for (std::size_t i = head.value().size(); i > 4; --i)
      size = size << 8 | static_cast<unsigned char>(head.value()[i - 1]);
    Result<std::string> content = ReadUpTo(packed_, std::min(size, kMostDictionary));
    if (!content.ok()) return content.status();
    dictionary = content.take();
    if (dictionary.starts_with("\x28\xB5\x2F\xFD")) {
      std::string unpacked;
      (void)UnpackBody(BodyCoding::kZstd, dictionary, kMostDictionary, unpacked);  // a damaged one fits no frame
      dictionary = std::move(unpacked);
    }
  }
  Packing packing = ZstdPacking(std::move(dictionary));
  if (!packing.make()) return Status::Ok();  // the kind says it
  members_ = std::make_unique<MemberSource>(packed_, 0, std::move(packing));
  return BeginPacked(false);
}

// With `apart` members that hold whole records are divided over threads.
Status InputReader::BeginPacked(bool apart) {
  apart_ = apart;
  Result<std::string> text = ReadUpTo(*members_, kKindBytes);
  if (!text.ok()) return text.status();
  kind_ = KindOf(text.value());
  if (kind_ == InputKind::kWarc && apart) {
    if (place_.text == 0)
      BeginSpans(place_.offset);
    else
      BeginMembers(place_);
    return Status::Ok();
  }
  unpacked_ = std::make_unique<ResumedSource>(text.take(), *members_);
  if (kind_ == InputKind::kWarc) {
    BeginRecords(*unpacked_, {0, place_.text});
  } else if (kind_ == InputKind::kHtml || kind_ == InputKind::kText || members_->breaks() > 0) {
    way_ = Way::kPage;
  }
  return Status::Ok();
}

void InputReader::BeginSpans(std::uint64_t offset) {
  way_ = Way::kSpans;
  next_span_ = expected_ = offset;
  under_way_ = 0;
  probing_ = true;
  ++round_;
}

void InputReader::BeginRecords(ByteSource& text, const HarvestPlace& place) {
  way_ = Way::kRecords;
  text_place_ = place;
  damaged_ = 0;
  batches_ = std::make_unique<RecordBatches>(text, apart_ ? members_.get() : nullptr, place.text);
}

void InputReader::BeginMembers(const HarvestPlace& place) {
  batches_.reset();
  file_source_ = std::make_unique<FileSource>(*file_, place.offset);
  members_ = std::make_unique<MemberSource>(*file_source_, place.offset);
  BeginRecords(*members_, place);
}

InputReader::Step InputReader::NextPage(HarvestWork& work, std::size_t& weight) {
  way_ = Way::kEnd;
  HarvestPortion portion;
  Result<std::string> body = ReadUpTo(unpacked_ ? *unpacked_ : packed_, kMostPage);
  if (!body.ok()) portion.failure = body.status();
  const bool is_page = kind_ == InputKind::kHtml || kind_ == InputKind::kText;
  // Files of other content in a folder are passed over in silence, torn ones too.
  if (members_ && (is_page || named_)) portion.damaged = std::min<std::size_t>(members_->breaks(), 1);
  if (!body.ok() || !is_page) {
    work = Finished(std::move(portion));
    return Step::kWork;
  }
  weight = body.value().size();
  const std::string_view type = kind_ == InputKind::kText ? "text/plain" : "text/html";
  work = [this, type, text = std::make_shared<std::string>(body.take()), damaged = portion.damaged](HarvestTools&) {
    HarvestPortion read;
    read.damaged = damaged;
    if (std::optional<HarvestedPage> page = ReadFilePage(*text, type, name_, reading_, read.counts)) {
      if (file_ != nullptr) page->seen = file_->modified();
      read.pages.push_back(std::move(*page));
    }
    return read;
  };
  return Step::kWork;
}

InputReader::Step InputReader::NextBatch(HarvestWork& work, std::size_t& weight) {
  Result<std::unique_ptr<RecordBatch>> next = batches_->Next();
  if (!next.ok()) {
    way_ = Way::kEnd;
    HarvestPortion failed;
    failed.failure = next.status();
    work = Finished(std::move(failed));
    return Step::kWork;
  }
  if (!next.value()) return EndBatches(work, weight);
  const std::shared_ptr<RecordBatch> batch = next.take();
  damaged_ += batch->damaged;
  weight = batch->capacity;
  HarvestPlace behind{text_place_.offset, batch->text_end};
  if (!members_) behind = {text_place_.offset + batch->text_end, 0};
  if (batches_->synced()) behind = {members_->next_member(), 0};
  work = [this, batch, behind](HarvestTools&) {
    HarvestPortion portion;
    for (const WarcRecord& record : batch->records) ReadInto(portion, record, reading_);
    portion.damaged = batch->damaged;
    portion.behind = behind;
    return portion;
  };
  return Step::kWork;
}

InputReader::Step InputReader::EndBatches(HarvestWork& work, std::size_t& weight) {
  const std::size_t breaks = members_ ? members_->breaks() : 0;
  if (batches_->synced())
    BeginSpans(members_->next_member());
  else
    way_ = Way::kEnd;
  // Damage that no record has shown, such as a wrong checksum.
  if (breaks <= damaged_) return Next(work, weight);
  HarvestPortion portion;
  portion.damaged = breaks - damaged_;
  portion.behind = {way_ == Way::kSpans ? expected_ : file_ != nullptr ? file_->size().value_or(0) : 0, 0};
  work = Finished(std::move(portion));
  return Step::kWork;
}

InputReader::Step InputReader::NextSpan(HarvestWork& work, std::size_t& weight) {
  const std::uint64_t size = file_->size().value_or(0);
  if (next_span_ >= size) return under_way_ > 0 ? Step::kWait : Step::kEnd;
  if (probing_ && under_way_ > 0) return Step::kWait;
  const std::uint64_t begin = next_span_;
  const std::uint64_t limit = std::min(begin + kSpan, size);
  const bool sure = under_way_ == 0 && begin == expected_;
  next_span_ = limit;
  ++under_way_;
  weight = kSpanWeight;
  work = [this, begin, limit, sure, round = round_](HarvestTools& tools) {
    HarvestPortion portion = ReadSpan(tools, begin, limit, sure);
    portion.round = round;
    return portion;
  };
  return Step::kWork;
}

HarvestPortion InputReader::ReadSpan(HarvestTools& tools, std::uint64_t begin, std::uint64_t limit, bool sure) const {
  HarvestPortion portion;
  const Result<MemberSpan> span = tools.members.Read(
      *file_, begin, limit, sure, [&](const WarcRecord& record) { ReadInto(portion, record, reading_); });
  portion.limit = limit;
  portion.span = span.ok() ? span.value() : MemberSpan{begin, begin, false};
  if (!span.ok()) portion.failure = span.status();
  return portion;
}

bool InputReader::Take(HarvestPortion& portion, HarvestTools& tools) {
  if (!portion.span) return true;
  if (portion.round != round_) return false;
  --under_way_;
  if (portion.span->begin != expected_) {
    // A member goes on from the span before; perhaps a member seemed to begin where none does.
    if (expected_ >= portion.limit) return false;
    portion = ReadSpan(tools, expected_, portion.limit, true);
  }
  if (!portion.failure.ok()) {
    way_ = Way::kEnd;
    ++round_;
    return true;
  }
  expected_ = portion.span->end;
  portion.behind = {expected_, 0};
  probing_ = false;
  if (portion.span->stream) {
    ++round_;
    BeginMembers(portion.behind);
  } else {
    next_span_ = std::max(next_span_, expected_);
  }
  return true;
}

}  // namespace quenlar
