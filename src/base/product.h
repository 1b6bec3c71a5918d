// The product's name and version, as people and servers are told them. The build gives both: CMakeLists.txt.
#pragma once

namespace quenlar {

extern const char* const kProductName;     // "Brenvy Quenlar Pro"
extern const char* const kProductVersion;  // "3.0"
extern const char* const kProductCaption;  // name and version, the title of windows and message boxes
extern const char* const kUserAgent;       // what a download says of itself: the value of the header User-Agent

}  // namespace quenlar
