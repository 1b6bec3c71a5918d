// Web archives for tests, made by the standard (ISO 28500) out of a few words.
#pragma once

#include <string>
#include <string_view>

#include <zlib.h>

namespace quenlar {

struct RecordText {
  std::string type = "response";
  std::string target = "http://www.firma.de/";
  std::string date = "2026-11-22T13:20:32Z";
  std::string content_type = "application/http;msgtype=response";
  std::string line_end = "\r\n";
  std::string behind = "\r\n\r\n";
  std::ptrdiff_t wrong_length = 0;  // added to the length
};

inline std::string WarcText(const RecordText& record, std::string_view block) {
  const std::string& end = record.line_end;
  std::string text = "WARC/1.1" + end + "WARC-Type: " + record.type + end;
  if (!record.target.empty()) text += "WARC-Target-URI: " + record.target + end;
  if (!record.date.empty()) text += "WARC-Date: " + record.date + end;
  text += "WARC-Record-ID: <urn:uuid:12345678-1234-1234-1234-123456789abc>" + end;
  if (!record.content_type.empty()) text += "Content-Type: " + record.content_type + end;
  const auto length = static_cast<std::ptrdiff_t>(block.size()) + record.wrong_length;
  text += "Content-Length: " + std::to_string(length) + end + end;
  return text + std::string(block) + record.behind;
}

inline std::string HttpText(std::string_view body, std::string_view fields = "Content-Type: text/html\r\n") {
  return "HTTP/1.1 200 OK\r\n" + std::string(fields) + "\r\n" + std::string(body);
}

// An answer with a page that has one address, "NAME@firma.de".
inline std::string PageRecord(const std::string& name, RecordText record = {}) {
  record.target += name;
  return WarcText(record, HttpText("<p>" + name + "@firma.de</p>"));
}

// `bits` as zlib counts them: 31 is gzip, 15 the zlib format, -15 raw deflate data. Level 0 stores the bytes.
inline std::string Deflated(std::string_view text, int bits = 31, int level = 6) {
  z_stream stream{};
  if (deflateInit2(&stream, level, Z_DEFLATED, bits, 8, Z_DEFAULT_STRATEGY) != Z_OK) return {};
  std::string packed(deflateBound(&stream, text.size()) + 64, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(packed.size() - stream.avail_out);
  deflateEnd(&stream);
  return packed;
}
inline std::string Gzip(std::string_view text) { return Deflated(text); }

}  // namespace quenlar
