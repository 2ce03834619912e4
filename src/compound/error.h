// The one exception type of compound/ and store/.
#pragma once

#include <exception>
#include <filesystem>
#include <string>

namespace compound {

enum class ErrorCode {
    NotFound, // the file, storage or stream does not exist
    Exists,   // an element or file of that name is there already
    SameFile, // one file is to be both what is read and what is written
    Locked,   // another opener holds the file
    Damaged,  // the bytes are no sound compound file (a finding about bytes, never about access)
    NotCompoundFile, // the header signature is missing: some other kind of file
    NoSpace,         // the disk is full
    TooLarge,        // the format or a stated limit cannot hold the result
    Denied,          // no permission, or a read-only medium
    InvalidName,     // the name cannot be an element's or a file's name
    InvalidPicture,  // the bytes cannot be decoded as a picture
    // Done, or not: the header could neither be written nor put back, or a file was moved and its
    // new place not made durable.
    OutcomeUnknown,
    Cancelled, // the operation was asked to stop, and has left everything as it was
    Failed,    // any other failure of the system
};

// Names what went wrong and the file it happened to. what() is "FILE: cause" in UTF-8, fit for a
// message box or stderr.
class Error : public std::exception {
  public:
    Error(ErrorCode code, std::filesystem::path file, std::string cause);

    ErrorCode code() const noexcept { return code_; }
    const std::filesystem::path& file() const noexcept { return file_; }
    const std::string& cause() const noexcept { return cause_; }
    const char* what() const noexcept override { return message_.c_str(); }

  private:
    ErrorCode code_;
    std::filesystem::path file_;
    std::string cause_;
    std::string message_;
};

// The error for the system's error number `systemError` (errno); the cause is "ACTION: system
// text".
Error systemError(int systemError, const std::filesystem::path& file, const std::string& action);

} // namespace compound
