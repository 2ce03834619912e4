// A file of the disk as the toolkit's writers want it.
#pragma once

#include "compound/disk.h"

#include <QIODevice>

#include <cstdint>
#include <exception>

namespace catalogue {

// What is written to it goes to the file, from its beginning on. The toolkit knows no exceptions:
// the first failure is kept, everything behind it dropped, and finish() throws it.
class PdfFile : public QIODevice {
  public:
    // The file must outlive it.
    explicit PdfFile(compound::DiskFile& file);

    // After the last byte.
    void finish();

  protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char* data, qint64 count) override;

  private:
    void writeOut();

    compound::DiskFile& file_;
    QByteArray waiting_; // the toolkit writes a few bytes at a time
    std::uint64_t written_ = 0;
    std::exception_ptr failure_;
};

} // namespace catalogue
