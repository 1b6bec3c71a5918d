#include "crawl/contact_words.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

#include "base/ascii.h"
#include "base/windows1252.h"

namespace quenlar {
namespace {

// Longer paths are not looked at further: no contact page hides its word behind them.
constexpr std::size_t kMostLooked = 512;

// A longer text is a sentence or a headline, which may have any word in it.
constexpr std::size_t kLongestLabel = 60;  // bytes

struct Word {
  std::string_view text;
  int rank;
  constexpr bool operator<(const Word& other) const { return text < other.text; }
};

// Blanks, hyphens and underscores in a text count as "-". Accents are written, and left out, as paths do both. What is
// called like this shows addresses, and does little else.
constexpr std::string_view kFirstWords[] = {
    // English
    "contact", "about", "team", "people", "staff", "imprint", "legal", "directory", "who-we-are", "faculty", "office",
    "board", "leadership", "press", "get-in-touch", "find-us", "phonebook", "phone-book", "committee", "officers",
    "trustees", "governors", "management", "masthead", "editors", "editorial-team", "organizers", "organisers",
    "organizing", "organising", "maintainers", "contributors", "authors", "professors", "academics", "teachers",
    "teaching-staff", "councillors", "elected-members", "attorneys", "lawyers", "doctors", "our-story", "crew",
    // French
    "equipe", "équipe", "a-propos", "apropos", "à-propos", "qui-sommes-nous", "mentions-legales", "mentions-légales",
    "informations-legales", "informations-légales", "personnel", "annuaire", "nous-contacter", "contactez",
    "coordonnees", "coordonnées", "collaborateurs", "enseignants", "professeurs", "secretariat", "secrétariat", "elus",
    "élus", "vos-elus", "conseil-d-administration", "redaction", "rédaction", "comite", "comité", "contributeurs",
    "auteurs", "bureau", "avocats",
    // German
    "kontakt", "impressum", "ueber-uns", "uber-uns", "über-uns", "mitarbeiter", "mitarbeitende", "ansprechpartner",
    "ansprechpersonen", "personen", "rechtliches", "vorstand", "verwaltung", "anfahrt", "so-finden-sie", "wer-wir-sind",
    "beschaeftigte", "beschäftigte", "kollegium", "lehrkraefte", "lehrkräfte", "lehrer", "geschaeftsstelle",
    "geschäftsstelle", "geschaeftsfuehrung", "geschäftsführung", "schulleitung", "sekretariat", "praesidium",
    "präsidium", "redaktion", "anbieter", "professuren", "professoren", "professorinnen", "lehrstuehle", "lehrstühle",
    "gemeinderat", "stadtrat", "mitwirkende", "veranstalter", "anwaelte", "anwälte",
    // Italian
    "contatti", "contatto", "contatta", "chi-siamo", "squadra", "personale", "persone", "note-legali", "direzione",
    "direttivo", "consiglio-direttivo", "dove-siamo", "dati-societari", "docenti", "corpo-docente", "rubrica", "uffici",
    "segreteria", "redazione", "comitato", "autori", "giunta",
    // Spanish
    "contacto", "contacta", "contáctenos", "contáctanos", "quienes-somos", "quiénes-somos", "equipo", "personal",
    "personas", "profesionales", "aviso-legal", "acerca-de", "sobre-nosotros", "nosotros", "directorio",
    "donde-estamos", "dónde-estamos", "junta-directiva", "directiva", "profesorado", "claustro", "concejales",
    "corporacion", "corporación", "secretaria", "secretaría", "redaccion", "redacción", "comite-organizador",
    "comité-organizador", "autores",
    // Japanese in Latin letters
    "otoiawase", "toiawase", "renraku", "kaisha-gaiyo", "gaiyo", "yakuin", "shokuin", "kyoin"};

// What is called like this has an address of its own more often than other pages.
constexpr std::string_view kSecondWords[] = {
    // English
    "privacy", "data-protection", "terms", "company", "support", "customer-service", "help", "careers", "jobs",
    "vacancies", "work-with-us", "media", "newsroom", "security", "locations", "branches", "departments", "town-hall",
    "council", "sections", "groups", "research-groups", "labs", "community", "mailing-list", "get-involved", "credits",
    "call-for-papers", "cfp", "submissions", "registration", "register", "sponsors", "partners", "admissions",
    "membership", "members", "donate", "sales", "shipping", "delivery", "returns",
    // French
    "confidentialite", "confidentialité", "donnees-personnelles", "données-personnelles", "cgv", "entreprise",
    "presentation", "présentation", "recrutement", "carrieres", "carrières", "espace-presse", "aide", "service-client",
    "agences", "magasins", "nos-magasins", "implantations", "mairie", "services-municipaux", "conseil-municipal",
    "membres", "securite", "sécurité", "communaute", "communauté", "inscription", "partenaires", "adhesion", "adhésion",
    "vie-scolaire", "appel", "livraison", "retours",
    // German
    "datenschutz", "agb", "unternehmen", "organisation", "karriere", "stellenangebote", "bewerbung", "presse", "medien",
    "hilfe", "kundenservice", "standorte", "filialen", "niederlassungen", "rathaus", "aemter", "ämter",
    "buergerservice", "bürgerservice", "abteilungen", "arbeitsgruppen", "gruppen", "sicherheit", "mailinglisten",
    "mitmachen", "anmeldung", "sponsoren", "mitglied", "spenden", "widerruf", "versand", "ausbildung", "einrichtungen",
    // Italian
    "informativa", "condizioni", "azienda", "societa", "società", "lavora-con-noi", "ufficio-stampa", "stampa",
    "assistenza", "servizio-clienti", "sedi", "punti-vendita", "amministrazione", "aree", "consiglio", "sezioni",
    "gruppi", "sicurezza", "comunita", "comunità", "registrazione", "iscrizione", "sostienici", "spedizioni", "resi",
    // Spanish
    "privacidad", "politica-de-privacidad", "política-de-privacidad", "proteccion-de-datos", "protección-de-datos",
    "condiciones", "empresa", "trabaja-con-nosotros", "empleo", "prensa", "sala-de-prensa", "ayuda", "atencion",
    "atención", "oficinas", "delegaciones", "tiendas", "ayuntamiento", "areas", "áreas", "secciones", "grupos",
    "seguridad", "comunidad", "inscripcion", "inscripción", "patrocinadores", "socios", "envios", "envíos",
    "devoluciones",
    // Japanese in Latin letters
    "saiyo", "kojin", "soshiki", "jimukyoku"};

// Words of a script without blanks count wherever they stand.
constexpr Word kJapanese[] = {
    {"お問い合わせ", 0},   {"お問合せ", 0},   {"問い合わせ", 0},   {"連絡先", 0},       {"会社概要", 0},
    {"会社案内", 0},       {"企業情報", 0},   {"スタッフ", 0},     {"チーム", 0},       {"特定商取引法", 0},
    {"私たちについて", 0}, {"運営者情報", 0}, {"役員", 0},         {"教職員", 0},       {"教員", 0},
    {"社員紹介", 0},       {"メンバー", 0},   {"議員名簿", 0},     {"編集部", 0},       {"事務局", 0},
    {"実行委員会", 0},     {"開発者", 0},     {"プライバシー", 1}, {"個人情報", 1},     {"採用情報", 1},
    {"求人", 1},           {"プレス", 1},     {"報道", 1},         {"サポート", 1},     {"拠点一覧", 1},
    {"店舗案内", 1},       {"アクセス", 1},   {"各課", 1},         {"組織", 1},         {"担当課", 1},
    {"研究室", 1},         {"事務室", 1},     {"コミュニティ", 1}, {"セキュリティ", 1}, {"参加登録", 1},
    {"論文募集", 1},       {"入会案内", 1},   {"利用規約", 1},     {"送料", 1},         {"返品", 1}};

// All words in order, and where those begin that have a certain first byte.
struct WordTable {
  std::array<Word, std::size(kFirstWords) + std::size(kSecondWords)> words;
  std::array<std::uint16_t, 257> begins;
};

constexpr WordTable MakeTable() {
  WordTable table{};
  std::size_t count = 0;
  for (const std::string_view word : kFirstWords) table.words[count++] = {word, kPromisesContacts};
  for (const std::string_view word : kSecondWords) table.words[count++] = {word, kMayHoldContacts};
  std::sort(table.words.begin(), table.words.end());
  for (const Word& word : table.words) ++table.begins[static_cast<unsigned char>(word.text[0]) + 1u];
  for (std::size_t i = 1; i < table.begins.size(); ++i)
    table.begins[i] = static_cast<std::uint16_t>(table.begins[i] + table.begins[i - 1]);
  return table;
}

constexpr WordTable kWords = MakeTable();

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

// The best rank of the words in a text that Words has made.
int RankOfWords(std::string_view words) {
  int rank = kNoContacts;
  std::string_view rest = words;
  for (std::size_t parted = 0; parted != std::string_view::npos; parted = rest.find('-')) {
    rest.remove_prefix(parted + 1);
    if (rest.empty()) break;
    const auto first = static_cast<unsigned char>(rest[0]);
    for (std::size_t i = kWords.begins[first]; i < kWords.begins[first + 1u]; ++i) {
      if (rest.starts_with(kWords.words[i].text)) rank = std::min(rank, kWords.words[i].rank);
    }
  }
  if (IsAscii(words)) return rank;
  for (const Word& word : kJapanese) {
    if (word.rank < rank && words.find(word.text) != std::string::npos) rank = word.rank;
  }
  return rank;
}

// The last segment of a path that is the name of something: "/contact/index.html" is about contacts.
std::string_view LastName(std::string_view path) {
  std::string_view last;
  do {
    while (path.ends_with('/')) path.remove_suffix(1);
    last = path.substr(path.rfind('/') + 1);
    path.remove_suffix(last.size());
  } while (!path.empty() && (last.starts_with("index.") || last.starts_with("default.")));
  return last;
}

int Lowered(int rank) { return std::min(rank + 1, kNoContacts); }

}  // namespace

int ContactRankOfPath(std::string_view path) {
  path = path.substr(0, kMostLooked);
  const int own = RankOfWords(Words(LastName(path)));
  return own == kPromisesContacts ? own : std::min(own, Lowered(RankOfWords(Words(path))));
}

int ContactRankOfText(std::string_view text) {
  const int rank = RankOfWords(Words(text));
  return text.size() > kLongestLabel ? Lowered(rank) : rank;
}

}  // namespace quenlar
