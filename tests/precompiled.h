// What most tests include beyond that, likewise (cmake/precompiled.h).
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../cmake/precompiled.h"
