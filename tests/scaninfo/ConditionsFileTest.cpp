#include "scaninfo/ConditionsFile.h"

#include "catalogue/Conditions.h"
#include "scaninfo/ScanInfoFixture.h"
#include "support/FailingFileStore.h"

namespace thntfs::test {

namespace {

/// The small catalogue in a file, entry 2 overwritten and entry 3 there in part, with the file beside it.
class ConditionsFileTest : public ScanInfoFixture {
protected:
    ConditionsFileTest() {
        EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
        SetCondition(2, kOverwritten);
        SetCondition(3, 62);
        EXPECT_TRUE(SaveTreeInfo(tree_).Done);
        good_ = ReadFileBytes(beside_);
    }

    /// The bytes after a load with these beside it.
    std::vector<std::uint8_t> Loaded(ConstBytes beside) {
        WriteFileBytes(beside_, beside);
        EXPECT_TRUE(LoadTreeInfo(tree_).Done);
        return Engine.Conditions;
    }

    const std::string tree_ = At("saved.tht");
    const std::string beside_ = At("saved.tht.conditions");
    const std::vector<std::uint8_t> told_ = {0, 0, kOverwritten, 62};
    ByteVector good_;
};

TEST_F(ConditionsFileTest, IsTakenWithItsOwnFileAndIgnoredWhereAnyBitIsWrong) {
    ASSERT_EQ(good_.size(), 36U);
    EXPECT_EQ(ReadFileBytes(tree_), LayTreeInfo(laid_)) << "which is as it was";
    EXPECT_EQ(Loaded(good_), told_);
    for (std::size_t bit = 0; bit < 8 * good_.size(); ++bit) {
        ByteVector damaged = good_;
        damaged[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
        EXPECT_TRUE(Loaded(damaged).empty()) << bit;
    }
    for (const std::size_t size : {0U, 3U, 24U, 35U, 37U}) {
        ByteVector cut = good_;
        cut.resize(size);
        EXPECT_TRUE(Loaded(cut).empty()) << size;
    }
    laid_.VolumeStart += 1;
    WriteFileBytes(tree_, LayTreeInfo(laid_));
    EXPECT_TRUE(Loaded(good_).empty()) << "of another scan";
}

TEST_F(ConditionsFileTest, OfMoreEntriesThanTheCatalogueHasIsIgnored) {
    EXPECT_EQ(Loaded(good_), told_);
    SetCondition(4, kWhole); // there is none
    EXPECT_TRUE(SaveTreeInfo(tree_).Done);
    EXPECT_TRUE(Loaded(ReadFileBytes(beside_)).empty());
}

TEST_F(ConditionsFileTest, FailureToWriteItIsToldAndLeavesWhatStood) {
    WriteFileBytes(beside_, BytesOf("somebody's own"));
    const ScanInfoResult refused = SaveTreeInfo(tree_);
    EXPECT_TRUE(refused.Done);
    EXPECT_EQ(refused.Beside, kErrorFileExists);
    EXPECT_EQ(Reports.Log.back().Name, "The condition of deleted files could not be saved. Errorcode =80");
    EXPECT_EQ(ReadFileBytes(beside_), BytesOf("somebody's own"));

    WriteFileBytes(beside_, good_);
    SetCondition(2, kWhole);
    FailingFileStore store;
    SetFileStore(&store);
    std::uint64_t call = 0;
    do {
        store.FailAt(++call, kErrorDiskFull);
        const ErrorCode code = SaveConditions(tree_);
        const bool failed = store.Plan().Failures != 0;
        EXPECT_EQ(code != kErrorNone, failed) << call;
        EXPECT_EQ(ReadFileBytes(beside_) == good_, failed) << call;
    } while (store.Plan().Failures != 0 && call < 50);
    SetFileStore(nullptr);
    EXPECT_GT(call, 5U);
    EXPECT_EQ(Names(), (std::set<std::string>{"disk.img", "laid.tht", "saved.tht", "saved.tht.conditions"}));
}

} // namespace

} // namespace thntfs::test
