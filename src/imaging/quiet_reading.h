// Qt's picture readers print what is wrong with a picture; here the caller tells it, with the
// file's name.
#pragma once

namespace imaging {

// While it lives, warnings that Qt gives in this thread are dropped. Errors that end the program
// are printed as ever.
class QuietReading {
  public:
    QuietReading();
    ~QuietReading();
    QuietReading(const QuietReading&) = delete;
    QuietReading& operator=(const QuietReading&) = delete;
};

} // namespace imaging
