// A label that behaves like a web link.
#pragma once

#include <functional>

#include "ui/controls.h"

namespace quenlar {

// The colours of a link, with the pointer over it and without (0xBBGGRR): magenta and blue.
inline constexpr ui::Color kLinkHover = 0xFF00FF;
inline constexpr ui::Color kLinkIdle = 0xFF0000;

// Makes a label look and act like a link: blue, and magenta and underlined while the pointer is over it. A click
// removes the underline and calls `open`.
void StyleAsLink(ui::Label& label, std::function<void()> open);

}  // namespace quenlar
