// Asks the misbehaving server, which runs beside the tests, for a page of its own.
#pragma once

#include <string>

namespace quenlar::window_test {

// The body of the answer; empty when there is none.
[[nodiscard]] std::string FetchFromServer(const std::string& path);

}  // namespace quenlar::window_test
