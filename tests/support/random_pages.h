// Pages made at random or made to hurt, the same ones for the same seed.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace quenlar {

// About `pieces` pieces of the things that page analysis looks for, in any order.
[[nodiscard]] std::string RandomPage(std::mt19937& random, std::size_t pieces);

// A page that a browser would show: headings, paragraphs, links, addresses, with a few faults.
[[nodiscard]] std::string RandomDocument(std::mt19937& random, std::size_t paragraphs);

// Texts of at most `bytes` that make a careless scanner look back or try again.
[[nodiscard]] std::vector<std::string> HostilePages(std::size_t bytes);

}  // namespace quenlar
