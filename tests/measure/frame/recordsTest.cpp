// Records of callers that know less of them, or more, than the library.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "records.h"

namespace zelm::measure {
namespace {

// Of the library.
struct Known {
    std::int32_t size;
    std::int32_t first;
    double second;
};
// Memory of a caller's.
struct Memory {
    alignas(Known) std::array<unsigned char, 64> bytes;

    explicit Memory(std::int32_t size) {
        bytes.fill(0xA5);
        std::memcpy(bytes.data(), &size, sizeof size);
    }
    void write(std::int32_t first, double second) {
        std::memcpy(bytes.data() + offsetof(Known, first), &first, sizeof first);
        std::memcpy(bytes.data() + offsetof(Known, second), &second, sizeof second);
    }
    Known* record() { return reinterpret_cast<Known*>(bytes.data()); }
    bool isUntouchedFrom(std::size_t offset) const {
        for (std::size_t i = offset; i < bytes.size(); ++i) {
            if (bytes[i] != 0xA5) {
                return false;
            }
        }
        return true;
    }
};

std::int32_t statusOfReading(const Known* record) {
    return guarded(nullptr, [&] { recordOf(record); });
}

TEST(MeasureRecords, FieldsThatAShortRecordLacksAreZero) {
    Memory memory(8);
    memory.write(7, 2.5);
    const Known known = recordOf<Known>(memory.record());
    EXPECT_EQ(known.size, 8);
    EXPECT_EQ(known.first, 7);
    EXPECT_EQ(known.second, 0.0);
}

TEST(MeasureRecords, OfALongerRecordTheKnownPartIsTaken) {
    Memory memory(40);
    memory.write(7, 2.5);
    const Known known = recordOf<Known>(memory.record());
    EXPECT_EQ(known.first, 7);
    EXPECT_EQ(known.second, 2.5);
}

TEST(MeasureRecords, WritingStaysWithinTheRecord) {
    for (const std::int32_t size : {4, 8, 12, 16, 40}) {
        SCOPED_TRACE(size);
        Memory memory(size);
        giveRecord(Known{0, 7, 2.5}, memory.record());
        Known seen{};
        std::memcpy(&seen, memory.bytes.data(), sizeof seen);
        EXPECT_EQ(seen.size, size);
        EXPECT_EQ(seen.first == 7, size >= 8);
        EXPECT_EQ(seen.second == 2.5, size >= 16);
        EXPECT_TRUE(memory.isUntouchedFrom(std::min<std::size_t>(static_cast<std::size_t>(size), sizeof(Known))));
    }
}

TEST(MeasureRecords, RecordsWithoutASizeAreRefused) {
    EXPECT_EQ(statusOfReading(nullptr), ZELM_ERR_PARAM);
    for (const std::int32_t size : {0, 3, -1, -64}) {
        Memory memory(size);
        EXPECT_EQ(statusOfReading(memory.record()), ZELM_ERR_PARAM);
        EXPECT_EQ(guarded(nullptr, [&] { giveRecord(Known{0, 7, 2.5}, memory.record()); }), ZELM_ERR_PARAM);
        EXPECT_TRUE(memory.isUntouchedFrom(sizeof size));
    }
}

TEST(MeasureGuard, WhatIsThrownBecomesAStatusAndWords) {
    ErrorText error;
    EXPECT_EQ(guarded(&error, [] {}), ZELM_OK);
    EXPECT_STREQ(error.c_str(), "");
    EXPECT_EQ(guarded(&error, [] { refuse("no data"); }), ZELM_MEASURE_ERR_DATA);
    EXPECT_STREQ(error.c_str(), "no data");
    EXPECT_EQ(guarded(&error, [] { require(false, "no argument"); }), ZELM_ERR_PARAM);
    EXPECT_STREQ(error.c_str(), "no argument");
    EXPECT_EQ(guarded(&error, [] { requireMemory(ZELM_ERR_MEMORY); }), ZELM_ERR_MEMORY);
    EXPECT_STREQ(error.c_str(), "out of memory");
    EXPECT_EQ(guarded(&error, [] { throw std::length_error("vector"); }), ZELM_ERR_MEMORY);
    EXPECT_STREQ(error.c_str(), "out of memory");
    EXPECT_EQ(guarded(&error, [] { throw std::runtime_error("of another library"); }), ZELM_MEASURE_ERR_DATA);
    EXPECT_STREQ(error.c_str(), "of another library");
    EXPECT_EQ(guarded(&error, [] { requireMemory(ZELM_ERR_PARAM); }), ZELM_OK);
}

TEST(MeasureGuard, LongWordsAreCut) {
    ErrorText error;
    const std::string words(2000, 'w');
    error.set(words);
    EXPECT_EQ(std::string(error.c_str()), words.substr(0, 511));
}

}  // namespace
}  // namespace zelm::measure
