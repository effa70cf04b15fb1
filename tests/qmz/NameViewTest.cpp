#include "NameView.h"
#include "VolumeIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace qmz {
namespace {

bool FitsNarrow(std::u16string_view units) {
    return std::all_of(units.begin(), units.end(), [](char16_t u) { return u < 0x100; });
}

// The forms a name can take: UTF-16 always, one byte a unit when every unit fits.
struct Forms {
    explicit Forms(std::u16string_view units) : wide(units), bytes(units.size()) {
        fits = NameView::Narrow(units.data(), units.size(), bytes.data());
        EXPECT_EQ(fits, FitsNarrow(units));
    }
    std::vector<NameView> All() const {
        std::vector<NameView> all{NameView(wide)};
        if (fits) {
            all.emplace_back(bytes.data(), bytes.size());
        }
        return all;
    }
    std::u16string wide;
    std::vector<uint8_t> bytes;
    bool fits = false;
};

int Sign(int v) {
    return (v > 0) - (v < 0);
}

TEST(NameViewTest, OrdersAndMatchesAsUtf16InEitherForm) {
    const std::vector<std::pair<std::u16string, std::u16string>> cases = {
        {u"", u""},
        {u"", u"a"},
        {u"a", u"b"},
        {u"ab", u"abc"},
        {u"A", u"a"},
        {u"caf\u00e9", u"cafe"},
        {u"\u00e9", u"z"}, // above 0x7F: a signed byte comparison would put it first
        {u"\u00ff", u"\u0100"},
        {u"\u00e9t\u00e9", u"\u00e9t\u00e9"},
        {u"x\u4e2d", u"x\u00ff"},
        {u"\U0001F600", u"\uFFFD"}, // units, not code points: a surrogate sorts before U+FFFD
        {u"same", u"same"},
        // Names longer than a conversion step, differing or not fitting in the step or after.
        {u"abcde", u"abcdf"},
        {u"\u0100bcd", u"abcd"},
        {u"abcdefgh\u0100", u"abcdefgh\u00ff"},
        {u"abc\u00e9defghij", u"abc\u00e9defghij"},
    };
    for (const auto& [a, b] : cases) {
        const int want = Sign(std::u16string_view(a).compare(b));
        const Forms fa(a);
        const Forms fb(b);
        for (NameView x : fa.All()) {
            for (NameView y : fb.All()) {
                SCOPED_TRACE(std::to_string(x.IsNarrow()) + std::to_string(y.IsNarrow()));
                EXPECT_EQ(Sign(NameView::Compare(x, y)), want);
                EXPECT_EQ(Sign(NameView::Compare(y, x)), -want);
                EXPECT_EQ(x == y, want == 0);
            }
            EXPECT_EQ(x.ToU16String(), a);
        }
    }
}

TEST(NameViewTest, IndexKeepsUtf16OrderAcrossFormsAndRenamesClashes) {
    VolumeIndex index;
    index.AddRoot({0, 0}, 0, false);
    for (std::u16string_view name :
         {u"\u00e9", u"z", u"\u4e2d", u"Z", u"caf\u00e9", u"\u00e9", u"\u4e2d"}) {
        IndexEntry e{};
        index.AppendName(name.data(), static_cast<uint32_t>(name.size()), &e);
        index.AddPending(e, 0);
    }
    index.CommitChildren(VolumeIndex::kRoot);
    const std::vector<std::u16string> want = {u"Z",          u"caf\u00e9", u"z",         u"\u00e9",
                                              u"\u00e9 (2)", u"\u4e2d",    u"\u4e2d (2)"};
    const IndexEntry& root = index.Entry(VolumeIndex::kRoot);
    ASSERT_EQ(root.Children(), want.size());
    for (uint32_t i = 0; i < root.Children(); ++i) {
        const uint32_t child = root.firstChild + i;
        const IndexEntry& e = index.Entry(child);
        EXPECT_EQ(index.Name(e).ToU16String(), want[i]);
        EXPECT_EQ((e.flags & kEntryNarrowName) != 0, FitsNarrow(want[i])) << i;
        EXPECT_EQ(index.Resolve(want[i]), child) << i;
    }
    EXPECT_EQ(index.Resolve(u"\u00e9 (3)"), VolumeIndex::kNotFound);
}

TEST(NameViewTest, EntryKeepsLargeSizesAndTimes) {
    const std::vector<std::pair<uint64_t, int64_t>> cases = {
        {0, 0},
        {UINT32_MAX, -1},
        {uint64_t{5} << 32 | 7, int64_t{1} << 40},
        {UINT64_MAX, INT64_MIN},
    };
    VolumeIndex index;
    index.AddRoot({0, 0}, 12345, true);
    for (size_t i = 0; i < cases.size(); ++i) {
        IndexEntry e{};
        e.SetSize(cases[i].first);
        const std::u16string name(1, static_cast<char16_t>(u'a' + i));
        index.AppendName(name.data(), 1, &e);
        index.AddPending(e, cases[i].second);
    }
    index.CommitChildren(VolumeIndex::kRoot);
    index.CompactExtents();
    EXPECT_EQ(index.Time(index.Entry(VolumeIndex::kRoot)), 12345);
    for (size_t i = 0; i < cases.size(); ++i) {
        const IndexEntry& e = index.Entry(index.Entry(VolumeIndex::kRoot).firstChild + i);
        EXPECT_EQ(e.Size(), cases[i].first) << i;
        EXPECT_EQ(index.Time(e), cases[i].second) << i;
    }
}

} // namespace
} // namespace qmz
