#include "cli/demo_site.h"

#include <string>

#include "base/ascii.h"

namespace quenlar {
namespace {

struct Page {
  const char* url;  // without scheme and query
  const char* body;
};

// Relative and absolute links, frames, mail links, addresses in attributes and in text, in several spellings, and
// links that are not followed: pictures, fragments, scripts, https.
constexpr Page kPages[] = {
    {"search.example/search",
     "<html><head><title>garden tools - search</title></head><body>\n"
     "<h3 class=\"r\"><a href=\"http://www.roses.example/\">Roses and secateurs</a></h3>\n"
     "<h3 class=\"r\"><a href=\"http://tulips.example/shop/index.html\">Tulip bulbs</a></h3>\n"
     "<h3 class=\"r\"><a href=\"http://www.roses.example/again.html\">Roses, another page</a></h3>\n"
     "<h3 class=\"r\"><a href=\"http://carousel.example/\">A site that only redirects</a></h3>\n"
     "<h3 class=\"r\"><a href=\"http://moved.example/\">A site that has moved</a></h3>\n"
     "</body></html>"},

    {"www.roses.example/",
     "<html><head><title>Roses &amp; secateurs</title></head><body>\n"
     "<p>Write to <a href=\"mailto:orders@roses.test\">the shop</a> or to Gardener@Roses.test.</p>\n"
     "<a href=\"catalogue/tools.html\">Tools</a> <a href='/about.html'>About us</a> <a href=\"#top\">Top</a>\n"
     "<a href=\"javascript:print()\">Print</a> <a href=\"pictures/rose.jpg\">A rose</a>\n"
     "<a href=\"https://secure.example/\">Pay</a> <a href=\"http://spades.example/\">Spades</a>\n"
     "</body></html>"},
    {"www.roses.example/catalogue/tools.html",
     "<html><head><title>Tools</title></head><body><p>Prices: sales@roses.test, gardener@roses.test</p>\n"
     "<a href=\"../about.html\">About us</a></body></html>"},
    {"www.roses.example/about.html",
     "<html><head><title>About us</title></head><body><ul><li>rosa@roses.test<li>linnea@roses.test</ul>\n"
     "</body></html>"},

    {"tulips.example/shop/index.html",
     "<html><head><title>Tulip bulbs</title></head><body><form><input name=\"to\" value=\"bulbs@tulips.test\">\n"
     "</form><a href=\"bulbs.html\">Bulbs</a> <a href=\"../../imprint.html\">Imprint</a></body></html>"},
    {"tulips.example/shop/bulbs.html",
     "<html><head><title>Bulbs</title></head><body>Nothing but flowers here.</body></html>"},
    {"tulips.example/imprint.html",
     "<html><head><title>Imprint</title></head><body>jan.bos@tulips.test<br>post@tulips.test</body></html>"},

    {"new-home.example/garden/",
     "<html><head><title>New home</title></head><body>hello@new-home.test <a "
     "href=\"/garden/map.html\">Map</a></body></html>"},
    {"new-home.example/garden/map.html",
     "<html><head><title>Map</title></head><body><p>Visit visits@new-home.test</p></body></html>"},
    {"spades.example/",
     "<html><head><title>Spades</title></head><body><address>spade@spades.test</address></body></html>"},

    {"www.museum.example/",
     "<html><head><title>The museum</title></head><frameset cols=\"20%,80%\">\n"
     "<frame src=\"menu.html\" name=\"menu\"><frame src=\"/rooms/first.html\" name=\"room\"></frameset>\n"
     "<noframes><a href=\"staff/list.html\">Staff</a></noframes></html>"},
    {"www.museum.example/menu.html",
     "<html><head><title>Menu</title></head><body><a href=\"mailto:info@museum.test\">Write to "
     "us</a></body></html>"},
    {"www.museum.example/rooms/first.html",
     "<html><head><title>First room</title></head><body>Guide: anna.lund@museum.test</body></html>"},
    {"www.museum.example/staff/list.html",
     "<html><head><title>Staff</title></head><body><table><tr><td>director@museum.test<td>KEEPER@museum.test\n"
     "<tr><td>keeper@museum.test<td>night-watch@museum.test</table></body></html>"},

    // What the classic run passes over: a long top-level name, an attribute, a script, a protected address.
    {"www.library.example/robots.txt", "User-agent: *\nDisallow: /stacks/\n"},
    {"www.library.example/",
     "<html><head><title>The library</title></head><body><a href=\"mailto:desk@library.test?subject=Books\">Write</a>\n"
     "<a href=\"/contact\">Contact</a> <a href=\"/loans\">Loans</a> <a href=\"/stacks/rare\">Rare books</a>\n"
     "<a href=\"//shop.library.example/\">Shop</a></body></html>"},
    {"www.library.example/contact",
     "<html><head><title>Contact</title></head><body><p>Letters: letters@library.example</p>\n"
     "<p>Our oldest reader: reader@library.test</p>\n"
     "<p>Clara Holm: clara [at] library [dot] test</p></body></html>"},
    {"www.library.example/loans",
     "<html><head><title>Loans</title></head><body><button data-mail=\"loans@library.test\">Ask</button>\n"
     "<script>var press = \"press\\u0040library.test\";</script></body></html>"},
    {"www.library.example/stacks/rare",
     "<html><head><title>Rare books</title></head><body>keeper@library.test</body></html>"},
    {"shop.library.example/", "<html><head><title>Shop</title></head><body>shop&#64;library.test</body></html>"},
};

constexpr const char* kNoPage =
    "<html><head><title>No such page</title></head><body>There is nothing here.</body></html>";

ServedAnswer Redirect(const char* location) {
  ServedAnswer answer;
  answer.status = 302;
  answer.location = location;
  return answer;
}

}  // namespace

ServedAnswer DemoAnswer(std::string_view url) {
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (url.starts_with(scheme)) url.remove_prefix(scheme.size());
  }
  url = url.substr(0, url.find('?'));
  // A client that asks its proxy may write the port out.
  std::string place = ReplaceAll(url, ":80/", "/");
  if (place.find('/') == std::string::npos) place += '/';

  // One site has moved, another sends its visitors round in circles and is never reached.
  if (place == "moved.example/") return Redirect("http://new-home.example/garden/");
  if (place == "carousel.example/") return Redirect("http://carousel.example/round");
  if (place == "carousel.example/round") return Redirect("http://carousel.example/");

  ServedAnswer answer;
  for (const Page& page : kPages) {
    if (place != page.url && place + "/" != page.url) continue;
    answer.body = page.body;
    if (place.ends_with("/robots.txt")) answer.content_type = "text/plain";
    return answer;
  }
  answer.status = 404;
  answer.body = kNoPage;
  return answer;
}

}  // namespace quenlar
