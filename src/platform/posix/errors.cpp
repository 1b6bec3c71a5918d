#include "platform/posix/errors.h"

#include <cerrno>
#include <system_error>

namespace quenlar {
namespace {

StatusKind KindOfErrno(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return StatusKind::kNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
      return StatusKind::kDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return StatusKind::kFull;
    case EWOULDBLOCK:
    case EBUSY:
    case ETXTBSY:
      return StatusKind::kBusy;
    default:
      return StatusKind::kFailed;
  }
}

}  // namespace

Status StatusOfErrno(int error, const std::string& what) {
  return {KindOfErrno(error), what + ": " + std::generic_category().message(error)};
}

}  // namespace quenlar
