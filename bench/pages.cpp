#include "bench/pages.h"

#include <fstream>
#include <random>

namespace quenlar::bench {
namespace {

std::string Repeat(const std::string& unit, std::size_t bytes) {
  std::string text;
  text.reserve(bytes + unit.size());
  while (text.size() < bytes) text += unit;
  text.resize(bytes);
  return text;
}

std::string DistinctAddresses(std::size_t bytes, const char* before, const char* after) {
  std::string text;
  text.reserve(bytes + 64);
  for (std::size_t i = 0; text.size() < bytes; ++i)
    text += before + ("u" + std::to_string(i)) + "@h.example.org" + after;
  return text;
}

std::string DensePage(std::mt19937& random, std::size_t number) {
  static const char* kNames[] = {"anna", "boris", "chen", "dora", "emil", "fatima", "goran", "hana", "ivo", "june"};
  static const char* kHosts[] = {"lists.example.org", "mail.example.net", "example.com", "dept.example.edu"};
  std::string page = "<html><head><title>Archive " + std::to_string(number) + "</title></head>\n<body>\n<ul>\n";
  for (int line = 0; line < 60; ++line) {
    const std::string name = std::string(kNames[random() % 10]) + "." + kNames[random() % 10];
    const std::string address = name + std::to_string(random() % 50) + "@" + kHosts[random() % 4];
    switch (line % 3) {
      case 0:
        page += "<li><a href=\"msg" + std::to_string(random() % 100000) + ".html\">Re: minutes</a> <i>" + name +
                " &lt;" + address + "&gt;</i>\n";
        break;
      case 1:
        page += "<tr><td>" + name + "</td><td><a href=\"mailto:" + address + "\">" + address + "</a></td></tr>\n";
        break;
      default:
        page +=
            "From: " + name + " <" + address + ">\nDate: some time ago\n\n> On the other day " + address + " wrote\n";
    }
  }
  return page + "</ul></body></html>\n";
}

}  // namespace

std::vector<std::string> LoadPages(const std::string& list_file) {
  std::vector<std::string> pages;
  std::ifstream list(list_file);
  for (std::string path; std::getline(list, path);) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in) continue;
    std::string& page = pages.emplace_back(static_cast<std::size_t>(in.tellg()), '\0');
    in.seekg(0).read(page.data(), static_cast<std::streamsize>(page.size()));
  }
  return pages;
}

std::vector<std::string> DensePages(std::size_t total_bytes) {
  std::mt19937 random(1);
  std::vector<std::string> pages;
  for (std::size_t bytes = 0; bytes < total_bytes; bytes += pages.back().size())
    pages.push_back(DensePage(random, pages.size()));
  return pages;
}

const std::vector<Family>& HostileFamilies() {
  static const std::vector<Family> kFamilies = {
      {"one letter", [](std::size_t n) { return Repeat("a", n); }},
      {"<, then one letter", [](std::size_t n) { return "<" + Repeat("a", n); }},
      {"<letters@ without an end", [](std::size_t n) { return "<" + Repeat("a", n) + "@"; }},
      {"run of <", [](std::size_t n) { return Repeat("<", n); }},
      {"run of >", [](std::size_t n) { return Repeat(">", n); }},
      {"run of %", [](std::size_t n) { return Repeat("%", n) + "@a.zz"; }},
      {"run of dots", [](std::size_t n) { return "a@" + Repeat(".", n); }},
      {"a@a@a@", [](std::size_t n) { return "<" + Repeat("a@", n); }},
      {"a.a.a@b.b.b", [](std::size_t n) { return "<" + Repeat("a.", n / 2) + "@" + Repeat("b.", n / 2); }},
      {"digits as domain", [](std::size_t n) { return "<a@" + Repeat("1.2", n); }},
      {"x@y.zz in tags", [](std::size_t n) { return Repeat("<x@y.zz>", n); }},
      {"x@y.zz in text", [](std::size_t n) { return Repeat(">x@y.zz<", n); }},
      {"distinct in tags", [](std::size_t n) { return DistinctAddresses(n, "<", ">"); }},
      {"distinct in text", [](std::size_t n) { return DistinctAddresses(n, "<p>", "</p>"); }},
      {"one segment", [](std::size_t n) { return ">" + DistinctAddresses(n, " ", " ") + "<"; }},
      {"tag never closed", [](std::size_t n) { return "<a href=\"" + Repeat("x y ", n); }},
      {"title never closed", [](std::size_t n) { return Repeat("<title>", n); }},
      {"anchors, none closed", [](std::size_t n) { return Repeat("<a href=x>", n); }},
      {"anchors, closed last", [](std::size_t n) { return Repeat("<a href=\"page.html\">y ", n) + "</a>"; }},
      {"tags without text", [](std::size_t n) { return Repeat("<b></b>", n); }},
      {"href= again and again", [](std::size_t n) { return "<a " + Repeat("href=", n) + "></a>"; }},
      {"result without a quote", [](std::size_t n) { return Repeat("<h3 class=r>href=", n); }},
  };
  return kFamilies;
}

std::size_t TotalBytes(const std::vector<std::string>& pages) {
  std::size_t bytes = 0;
  for (const std::string& page : pages) bytes += page.size();
  return bytes;
}

}  // namespace quenlar::bench
