#include "catalogue/pdf_file.h"

#include <span>

namespace catalogue {
namespace {

constexpr qsizetype kPiece = qsizetype{1} << 20;

} // namespace

PdfFile::PdfFile(compound::DiskFile& file) : file_(file) {
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

qint64 PdfFile::readData(char* /*data*/, qint64 /*most*/) {
    return -1;
}

qint64 PdfFile::writeData(const char* data, qint64 count) {
    if (failure_) {
        return -1;
    }
    try {
        waiting_.append(data, count);
        if (waiting_.size() >= kPiece) {
            writeOut();
        }
    } catch (...) {
        failure_ = std::current_exception();
        return -1;
    }
    return count;
}

void PdfFile::writeOut() {
    file_.write(written_, std::as_bytes(std::span(waiting_.constData(),
                                                  static_cast<std::size_t>(waiting_.size()))));
    written_ += static_cast<std::uint64_t>(waiting_.size());
    waiting_.clear();
}

void PdfFile::finish() {
    if (failure_) {
        std::rethrow_exception(failure_);
    }
    writeOut();
}

} // namespace catalogue
