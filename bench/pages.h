// The pages that the benchmarks work on: real ones from a list of files, generated address-dense ones, hostile
// families.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quenlar::bench {

// The files named in `list_file`, one path a line; those that cannot be read are left out.
[[nodiscard]] std::vector<std::string> LoadPages(const std::string& list_file);

// Generated pages, about `total_bytes` in all, with invented addresses under reserved domains; the same pages for the
// same size. Mailing-list archives: messages, indices of threads, and some lists of members.
[[nodiscard]] std::vector<std::string> DensePages(std::size_t total_bytes);
// Lists of members and nothing else: an address in every other line.
[[nodiscard]] std::vector<std::string> ContactPages(std::size_t total_bytes);

struct Family {
  const char* name;
  std::string (*make)(std::size_t bytes);
};
// Inputs made to hurt: what a scanner that looks back, or tries again, would pay for.
[[nodiscard]] const std::vector<Family>& HostileFamilies();

[[nodiscard]] std::size_t TotalBytes(const std::vector<std::string>& pages);

}  // namespace quenlar::bench
