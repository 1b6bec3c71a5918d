// What most tests include, for the presets that precompile it (QUENLAR_PRECOMPILE). A test still includes what it uses:
// the presets bench and fuzz precompile nothing, so that a missing include is noticed there.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
