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

// People who write to a mailing list, their words, and pages made of both. Every name is invented, every host reserved.
class Archive {
 public:
  std::string Contacts() {
    std::string page = Head("Members");
    page += "<ul>\n";
    for (int line = 0; line < 60; ++line) {
      const std::string name = Name(), address = Address(name);
      switch (line % 3) {
        case 0:
          page += "<li><a href=\"msg" + Number(100'000) + ".html\">Re: minutes</a> <i>" + name + " &lt;" + address +
                  "&gt;</i>\n";
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

  // A list of messages: who wrote, but not from where.
  std::string Index() {
    std::string page = Head("Archive by thread");
    page += "<ul>\n";
    for (int line = 0; line < 80; ++line) {
      page += "<li><a name=\"" + Number(100'000) + "\" href=\"msg" + Number(100'000) + ".html\">" + Words(5) +
              "</a> <em>" + Name() + "</em>\n";
    }
    return page + "</ul>\n<hr>" + Footer();
  }

  // One message: its head, text with quoted lines, a signature.
  std::string Message() {
    const std::string name = Name(), address = Address(name), other = Name();
    std::string page = Head(Words(4));
    page += "<ul class=\"links\"><li><a href=\"msg" + Number(100'000) + ".html\">previous</a></li><li><a href=\"msg" +
            Number(100'000) + ".html\">next</a></li></ul>\n<b>From:</b> " + name + " &lt;<a href=\"mailto:" + address +
            "\">" + address + "</a>&gt;<br>\n<b>Date:</b> some time ago<br>\n<pre>\n";
    if (random_() % 2 == 0) page += "On the other day " + other + " &lt;" + Address(other) + "&gt; wrote:\n";
    for (std::size_t line = 30 + random_() % 60; line > 0; --line)
      page += (line % 3 == 0 ? "&gt; " : "") + Words(10) + "\n";
    return page + "-- \n" + name + "\n</pre>\n<hr>" + Footer();
  }

  std::size_t Pick(std::size_t below) { return random_() % below; }

 private:
  static std::string Head(const std::string& title) {
    return "<html><head><title>" + title + "</title></head>\n<body>\n<h1>" + title + "</h1>\n";
  }
  static std::string Footer() {
    return "<p>Mail the <a href=\"mailto:list-admin@lists.example.org\">keeper of the list</a>.</p></body></html>\n";
  }
  std::string Number(std::size_t below) { return std::to_string(Pick(below)); }
  std::string Name() {
    static const char* kNames[] = {"anna", "boris", "chen", "dora", "emil", "fatima", "goran", "hana", "ivo", "june"};
    return std::string(kNames[Pick(10)]) + "." + kNames[Pick(10)];
  }
  std::string Address(const std::string& name) {
    static const char* kHosts[] = {"lists.example.org", "mail.example.net", "example.com", "dept.example.edu"};
    return name + Number(50) + "@" + kHosts[Pick(4)];
  }
  std::string Words(int count) {
    static const char* kWords[] = {"the",   "of",     "patch",  "we",    "could", "version",    "is", "list",
                                   "reply", "please", "attach", "build", "under", "tomorrow's", "I",  "documentation"};
    std::string words;
    for (int i = 0; i < count; ++i) words += (i == 0 ? "" : " ") + std::string(kWords[Pick(16)]);
    return words;
  }

  std::mt19937 random_{1};
};

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
  Archive archive;
  std::vector<std::string> pages;
  for (std::size_t bytes = 0; bytes < total_bytes; bytes += pages.back().size()) {
    const std::size_t kind = archive.Pick(40);
    pages.push_back(kind == 0 ? archive.Contacts() : kind < 8 ? archive.Index() : archive.Message());
  }
  return pages;
}

std::vector<std::string> ContactPages(std::size_t total_bytes) {
  Archive archive;
  std::vector<std::string> pages;
  for (std::size_t bytes = 0; bytes < total_bytes; bytes += pages.back().size()) pages.push_back(archive.Contacts());
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
      {"comment never closed", [](std::size_t n) { return Repeat("<!-- -- >", n); }},
      {"script never closed", [](std::size_t n) { return Repeat("<script><!--", n); }},
      {"quotes never closed", [](std::size_t n) { return Repeat("<a b='", n) + "\"@"; }},
      {"references", [](std::size_t n) { return Repeat("&am&#6", n) + "@"; }},
      {"at and dot", [](std::size_t n) { return Repeat("a at b dot ", n); }},
      {"brackets", [](std::size_t n) { return Repeat("[< ", n); }},
      {"open elements", [](std::size_t n) { return Repeat("<b hidden></i>", n) + "@"; }},
      {"svg in HTML in svg", [](std::size_t n) { return Repeat("<svg><desc>", n); }},
      {"links with fragments", [](std::size_t n) { return Repeat("<a href=\"page.html#x\">", n); }},
  };
  return kFamilies;
}

std::size_t TotalBytes(const std::vector<std::string>& pages) {
  std::size_t bytes = 0;
  for (const std::string& page : pages) bytes += page.size();
  return bytes;
}

}  // namespace quenlar::bench
