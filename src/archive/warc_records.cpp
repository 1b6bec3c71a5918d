#include "archive/warc_records.h"

#include <chrono>
#include <random>
#include <string_view>

#include <zlib.h>

#include "archive/http_message.h"
#include "base/ascii.h"
#include "platform/sha256.h"

namespace quenlar {
namespace {

constexpr std::string_view kEnd = "\r\n";

std::string Padded(std::int64_t number, std::size_t digits) {
  std::string text = std::to_string(number);
  return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

// "2026-11-22T13:20:32Z"
std::string DateText(std::int64_t time) {
  const auto seconds = std::chrono::sys_seconds(std::chrono::seconds(time));
  const auto day = std::chrono::floor<std::chrono::days>(seconds);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(seconds - day);
  return Padded(static_cast<int>(date.year()), 4) + "-" + Padded(static_cast<unsigned>(date.month()), 2) + "-" +
         Padded(static_cast<unsigned>(date.day()), 2) + "T" + Padded(clock.hours().count(), 2) + ":" +
         Padded(clock.minutes().count(), 2) + ":" + Padded(clock.seconds().count(), 2) + "Z";
}

// One gzip member; "" where memory is short.
std::string Zipped(std::string_view bytes) {
  constexpr int kGzip = 15 + 16;
  constexpr int kMemory = 8;
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzip, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) return {};
  std::string member(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));  // zlib only reads it
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(member.data());
  stream.avail_out = static_cast<uInt>(member.size());
  const bool whole = deflate(&stream, Z_FINISH) == Z_STREAM_END;
  member.resize(whole ? member.size() - stream.avail_out : 0);
  deflateEnd(&stream);
  return member;
}

std::string Field(std::string_view name, std::string_view value) {
  return std::string(name).append(": ").append(value).append(kEnd);
}

// `fields` are those that the kind of record has besides.
std::string Record(std::string_view type, const std::string& id, std::int64_t time, const std::string& fields,
                   std::string_view block) {
  std::string record = "WARC/1.1\r\n";
  record += Field("WARC-Type", type) + Field("WARC-Record-ID", id) + Field("WARC-Date", DateText(time)) + fields;
  record += Field("WARC-Block-Digest", "sha256:" + Sha256Hex(block));
  record += Field("Content-Length", std::to_string(block.size()));
  return Zipped(record.append(kEnd).append(block).append("\r\n\r\n"));
}

// The head of an answer whose chunks the transport has joined: what is true of the body now, and what stood there.
std::string JoinedHead(std::string_view head, std::size_t body_bytes) {
  std::string joined;
  for (std::string_view line : Split(head.substr(0, head.size() - kEnd.size()), kEnd)) {
    if (line.empty()) continue;
    const std::string_view name = line.substr(0, line.find(':'));
    if (EqualsIgnoreCase(name, "Transfer-Encoding") || EqualsIgnoreCase(name, "Content-Length")) {
      joined += "X-Archive-Orig-";
    }
    joined.append(line).append(kEnd);
  }
  return joined + Field("Content-Length", std::to_string(body_bytes)).append(kEnd);
}

// Of the body without its chunks, still in its content coding.
std::string PayloadDigest(std::string_view block) {
  HttpMessage message;
  if (!ParseHttpMessage(block, message)) return {};
  std::string storage;
  const std::string_view payload = message.chunked ? WithoutChunks(message.body, storage) : message.body;
  return Field("WARC-Payload-Digest", "sha256:" + Sha256Hex(payload));
}

}  // namespace

WarcIds::WarcIds() {
  std::random_device source;
  for (std::uint64_t& half : state_) half = static_cast<std::uint64_t>(source()) << 32 | source();
}

// Two streams of SplitMix64: random beginnings make ids of different runs differ, counting on those of one run.
std::string WarcIds::Next() {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string digits;
  for (std::uint64_t& half : state_) {
    half += 0x9E3779B97F4A7C15u;
    std::uint64_t mixed = half;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
    mixed ^= mixed >> 31;
    for (int shift = 60; shift >= 0; shift -= 4) digits += kDigits[mixed >> shift & 15];
  }
  constexpr std::size_t kVersion = 12, kVariant = 16;
  digits[kVersion] = '4';
  digits[kVariant] = kDigits[8 + (digits[kVariant] & 3)];
  return "<urn:uuid:" + digits.substr(0, 8) + "-" + digits.substr(8, 4) + "-" + digits.substr(12, 4) + "-" +
         digits.substr(16, 4) + "-" + digits.substr(20) + ">";
}

std::string WarcInfoRecord(const WarcOrigin& origin, const std::string& id, const std::string& file_name,
                           std::int64_t time) {
  std::string block = Field("software", origin.software) + Field("format", "WARC File Format 1.1");
  block += Field("conformsTo", "http://iipc.github.io/warc-specifications/specifications/warc-format/warc-1.1/");
  block += Field("robots", origin.robots) + Field("http-header-user-agent", origin.user_agent);
  return Record("warcinfo", id, time,
                Field("WARC-Filename", file_name) + Field("Content-Type", "application/warc-fields"), block);
}

std::string WarcExchangeRecords(const WarcExchange& exchange, WarcIds& ids) {
  const WebWire& wire = exchange.wire;
  const std::string response_id = ids.Next();
  std::string common = Field("WARC-Target-URI", exchange.url) + Field("WARC-Warcinfo-ID", exchange.info_id);
  if (!exchange.ip.empty()) common += Field("WARC-IP-Address", exchange.ip);
  std::string request_fields = common + Field("Content-Type", "application/http;msgtype=request");
  if (!wire.head.empty()) request_fields += Field("WARC-Concurrent-To", response_id);
  const std::string request = Record("request", ids.Next(), exchange.time, request_fields, wire.request);
  if (request.empty() || wire.head.empty()) return request;

  std::string block = wire.chunks_joined ? JoinedHead(wire.head, wire.body.size()) : wire.head;
  block += wire.body;
  std::string fields = common + Field("Content-Type", "application/http;msgtype=response") + PayloadDigest(block);
  if (exchange.cut == WarcCut::kLength) fields += Field("WARC-Truncated", "length");
  if (exchange.cut == WarcCut::kUnspecified) fields += Field("WARC-Truncated", "unspecified");
  const std::string response = Record("response", response_id, exchange.time, fields, block);
  return response.empty() ? std::string() : response + request;
}

}  // namespace quenlar
