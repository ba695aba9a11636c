#include "engine/RunList.h"

#include "support/EngineFixture.h"

namespace thntfs::test {

using Runs = std::vector<std::pair<std::uint32_t, std::uint64_t>>;

struct RunListCase {
    const char* Name;
    ByteVector Bytes;
    Runs Expected;
};

TEST(RunListTest, DecodesUpToItsEnd) {
    const RunListCase cases[] = {
        {"empty", {0}, {}},
        {"one", {0x11, 4, 64, 0}, {{4, 64}}},
        {"wide fields", {0x44, 1, 2, 3, 4, 5, 6, 7, 0x08, 0}, {{0x04030201, 0x08070605}}},
        {"a step back", {0x11, 1, 100, 0x11, 2, 0xF6, 0}, {{1, 100}, {2, 90}}},
        {"a step back of two bytes", {0x21, 1, 0, 4, 0x21, 2, 0, 0xFF, 0}, {{1, 1024}, {2, 768}}},
        {"a step back before cluster 0", {0x11, 1, 0x80, 0}, {{1, ~std::uint64_t{0} - 127}}},
        {"a sparse run", {0x11, 1, 10, 0x01, 7, 0x11, 2, 5, 0}, {{1, 10}, {0, 0}, {2, 15}}},
        {"no length field", {0x10, 9, 0}, {{0, 9}}},
        {"length of 5 bytes", {0x11, 1, 10, 0x15, 1, 1, 1, 1, 1, 1, 0}, {{1, 10}}},
        {"offset of 5 bytes", {0x11, 1, 10, 0x51, 1, 1, 1, 1, 1, 1, 0}, {{1, 10}}},
        {"length all ones", {0x11, 1, 10, 0x12, 0xFF, 0xFF, 1, 0}, {{1, 10}}},
        {"offset all ones", {0x11, 1, 10, 0x11, 2, 0xFF, 0}, {{1, 10}}},
        {"only nearly all ones", {0x22, 0xFF, 0xFE, 0xFF, 0x7F, 0}, {{0xFEFF, 0x7FFF}}},
        {"no closing byte", {0x11, 1, 10}, {{1, 10}}},
        {"cut in a field", {0x11, 1, 10, 0x21, 1, 10}, {{1, 10}}},
        {"cut behind a header", {0x11}, {}},
    };
    for (const RunListCase& test : cases) {
        SCOPED_TRACE(test.Name);
        std::vector<MftExtent> extents;
        EXPECT_EQ(DecodeRunList(test.Bytes, 0, extents), 1);
        EXPECT_EQ(RunsIn(extents), test.Expected);
    }
}

TEST(RunListTest, Appends) {
    std::vector<MftExtent> extents;
    for (const std::uint64_t offset : {1ULL, 1ULL, ~0ULL}) {
        DecodeRunList(ByteVector{0xEE, 0x11, 4, 64, 0}, offset, extents);
    }
    EXPECT_EQ(RunsIn(extents), (Runs{{4, 64}, {4, 64}}));
}

} // namespace thntfs::test
