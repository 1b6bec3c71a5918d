#include "base/product.h"

namespace quenlar {

constinit const char* const kProductName = QUENLAR_NAME;
constinit const char* const kProductVersion = QUENLAR_VERSION;
constinit const char* const kProductCaption = QUENLAR_NAME " " QUENLAR_VERSION;
constinit const char* const kUserAgent = "Mozilla/5.0 (compatible; Quenlar/" QUENLAR_VERSION ")";

}  // namespace quenlar
