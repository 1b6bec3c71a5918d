#include "crawl/contact_words.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "base/ascii.h"
#include "base/windows1252.h"

namespace quenlar {
namespace {

// Longer paths are not looked at further: no contact page hides its word behind them.
constexpr std::size_t kMostLooked = 512;

// Blanks, hyphens and underscores in a text count as "-". Accents are written, and left out, as paths do both.
constexpr std::string_view kWords[] = {
    // English
    "contact", "about", "team", "people", "staff", "imprint", "legal", "directory", "who-we-are", "faculty", "office",
    "board", "leadership", "press",
    // French
    "equipe", "équipe", "a-propos", "apropos", "à-propos", "qui-sommes-nous", "mentions-legales", "mentions-légales",
    "personnel", "annuaire", "nous-contacter", "contactez",
    // German
    "kontakt", "impressum", "ueber-uns", "uber-uns", "über-uns", "mitarbeiter", "ansprechpartner", "personen",
    "rechtliches", "vorstand", "verwaltung",
    // Italian
    "contatti", "contatto", "contattaci", "chi-siamo", "squadra", "personale", "note-legali", "direzione",
    // Spanish
    "contacto", "quienes-somos", "quiénes-somos", "equipo", "personal", "aviso-legal", "acerca-de", "directorio",
    // Japanese in Latin letters
    "otoiawase", "toiawase", "renraku", "kaisha-gaiyo", "gaiyo"};

// Words of a script without blanks count wherever they stand.
constexpr std::string_view kJapanese[] = {"お問い合わせ", "お問合せ", "問い合わせ", "連絡先",       "会社概要",
                                          "会社案内",     "スタッフ", "チーム",     "特定商取引法", "私たちについて"};

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char small = static_cast<char>(c | 0x20);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

// Percent signs decoded, Latin letters in lower case, everything that parts words as one "-", which also stands in
// front.
std::string Words(std::string_view text) {
  std::string words = "-";
  text = text.substr(0, kMostLooked);
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0) {
      c = static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    }
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                        static_cast<unsigned char>(c) >= 0x80;
    // "Ü" and its like, which UTF-8 writes in two bytes.
    const auto byte = static_cast<unsigned char>(c);
    const bool latin_capital = words.back() == '\xC3' && byte >= 0x80 && byte <= 0x9E;
    if (letter) {
      words += latin_capital ? static_cast<char>(byte + 0x20) : ToLower(c);
    } else if (words.back() != '-') {
      words += '-';
    }
  }
  return words;
}

}  // namespace

bool PromisesContacts(std::string_view path_or_text) {
  const std::string words = Words(path_or_text);
  std::string_view rest = words;
  for (std::size_t parted = 0; parted != std::string_view::npos; parted = rest.find('-')) {
    rest.remove_prefix(parted + 1);
    const auto begins = [&](std::string_view word) { return rest.starts_with(word); };
    if (std::any_of(std::begin(kWords), std::end(kWords), begins)) return true;
  }
  const auto stands = [&](std::string_view word) { return words.find(word) != std::string::npos; };
  return !IsAscii(words) && std::any_of(std::begin(kJapanese), std::end(kJapanese), stands);
}

}  // namespace quenlar
