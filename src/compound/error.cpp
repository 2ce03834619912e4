#include "compound/error.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace compound {

Error::Error(ErrorCode code, std::filesystem::path file, std::string cause)
    : code_(code),
      file_(std::move(file)),
      cause_(std::move(cause)),
      message_(file_.empty() ? cause_ : file_.string() + ": " + cause_) {}

namespace {

ErrorCode codeOf(int systemError) {
    switch (systemError) {
    case ENOENT:
    case ENOTDIR:
        return ErrorCode::NotFound;
    case EEXIST:
        return ErrorCode::Exists;
    case EACCES:
    case EPERM:
    case EROFS:
        return ErrorCode::Denied;
    case ENOSPC:
    case EDQUOT:
        return ErrorCode::NoSpace;
    case EFBIG:
        return ErrorCode::TooLarge;
    case EWOULDBLOCK:
        return ErrorCode::Locked;
    case ENAMETOOLONG:
    case EILSEQ:
        return ErrorCode::InvalidName;
    default:
        return ErrorCode::Failed;
    }
}

} // namespace

Error systemError(int systemError, const std::filesystem::path& file, const std::string& action) {
    return {codeOf(systemError), file,
            action + ": " + std::generic_category().message(systemError)};
}

} // namespace compound
