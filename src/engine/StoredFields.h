#pragma once

#include "engine/LittleEndian.h"

namespace thntfs {

// A stored record's fields are listed once, each with its byte offset. To encode, the list is handed to a
// FieldWriter, to decode, to a FieldReader.

class FieldWriter {
public:
    explicit FieldWriter(Bytes stored)
        : stored_(stored) {}

    template <typename Number>
    void operator()(std::uint64_t offset, const Number& field) const {
        PutNumber(stored_, offset, field);
    }

private:
    Bytes stored_;
};

/// Fields that the bytes don't hold become 0.
class FieldReader {
public:
    explicit FieldReader(ConstBytes stored)
        : stored_(stored) {}

    template <typename Number>
    void operator()(std::uint64_t offset, Number& field) const {
        field = NumberAt<Number>(stored_, offset);
    }

private:
    ConstBytes stored_;
};

} // namespace thntfs
