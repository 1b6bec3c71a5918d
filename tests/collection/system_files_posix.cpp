#include "collection/scratch_collection.h"
#include "platform/posix/files.h"

namespace quenlar {

std::unique_ptr<Files> SystemFiles() { return std::make_unique<PosixFiles>(); }

}  // namespace quenlar
