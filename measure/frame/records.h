// Records whose first field is their size: what a caller of another version does not have is 0, or is not written.
#ifndef ZELM_MEASURE_RECORDS_H
#define ZELM_MEASURE_RECORDS_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "fault.h"

namespace zelm::measure {

// The caller's record as this library knows it.
template <class Record>
Record recordOf(const Record* given) {
    static_assert(std::is_trivially_copyable_v<Record>);
    require(given != nullptr, "a record is NULL");
    require(given->size >= static_cast<std::int32_t>(sizeof(given->size)),
            "a record's field size is not set: it is the record's size in bytes");
    Record record{};
    std::memcpy(&record, given, std::min(sizeof(Record), static_cast<std::size_t>(given->size)));
    return record;
}

// Writes a record to the caller, as much of it as the caller knows; its size stays the caller's.
template <class Record>
void giveRecord(const Record& record, Record* to) {
    const Record known = recordOf(to);
    Record filled = record;
    filled.size = known.size;
    std::memcpy(to, &filled, std::min(sizeof(Record), static_cast<std::size_t>(known.size)));
}

}  // namespace zelm::measure

#endif
