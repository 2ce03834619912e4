// Where a reader puts what it reads, record by record: nothing of a file is kept.
#pragma once

#include "metafile/records/records.h"

#include <cstddef>
#include <span>

namespace metafile {

class RecordSink {
  public:
    virtual ~RecordSink() = default;
    RecordSink(const RecordSink&) = delete;
    RecordSink& operator=(const RecordSink&) = delete;

    virtual void take(const Record& record) = 0;

    // The data of a comment with EMF+ records, behind its identifier.
    virtual void takePlus(std::span<const std::byte> comment) = 0;

    // A record cannot be read. Finding that out may have taken long: a picture in it may be broken
    // at its very end.
    virtual void leaveOut() = 0;

  protected:
    RecordSink() = default;
};

// How far a file could be followed.
enum class FileEnd { Reached, Missing };

} // namespace metafile
