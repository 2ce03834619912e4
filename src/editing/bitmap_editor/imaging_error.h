// What loading a picture and the parameter dialogs report by number.
#pragma once

#include <stdexcept>
#include <string>

namespace editing {

class ImagingError : public std::runtime_error {
  public:
    static constexpr int kCorrupt = 20009;   // the file is damaged or of no known kind
    static constexpr int kCancelled = 20150; // the user has left the dialog without an answer

    ImagingError(int number, const std::string& what) : std::runtime_error(what), number_(number) {}

    int number() const { return number_; }

  private:
    int number_;
};

} // namespace editing
