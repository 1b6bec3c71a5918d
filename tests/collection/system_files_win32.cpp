#include "collection/scratch_collection.h"
#include "platform/win32/files.h"

namespace quenlar {

std::unique_ptr<Files> SystemFiles() { return std::make_unique<Win32Files>(); }

}  // namespace quenlar
