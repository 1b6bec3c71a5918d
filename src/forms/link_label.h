// A label that behaves like a web link.
#pragma once

#include <functional>

#include "ui/controls.h"

namespace quenlar {

// Blue-green-red.
inline constexpr ui::Color kLinkHover = 0xFF00FF;
inline constexpr ui::Color kLinkIdle = 0xFF0000;

// Blue; magenta and underlined while the pointer is over it. A click takes the underline away and calls `open`.
void MakeLink(ui::Label& label, std::function<void()> open);

}  // namespace quenlar
