// Options that several commands declare alike, and checks of their values. A check returns what is wrong, or "".
#pragma once

#include <initializer_list>
#include <string>

namespace CLI {
class App;
}

namespace quenlar {

// An option that takes one of a few words; its type name lists them ("a|b|c").
void DeclareChoice(CLI::App& verb, const std::string& name, std::string& value,
                   std::initializer_list<const char*> words, const std::string& help);

// "http://host", "https://host:8080", also with one trailing "/".
[[nodiscard]] std::string CheckHostUrl(const std::string& value);
// "http://host:port".
[[nodiscard]] std::string CheckProxyUrl(const std::string& value);

[[nodiscard]] std::string WithoutTrailingSlash(const std::string& value);

}  // namespace quenlar
