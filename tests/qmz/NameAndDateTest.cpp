// What images made by the usual tools never hold: malformed names, odd dates, zone changes
// off the quarter hour, and names that clash.
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

#include "EntryName.h"
#include "IsoDate.h"
#include "LocalTimeCache.h"
#include "VolumeIndex.h"

namespace qmz {
namespace {

struct NameCase {
    bool joliet; // else Rock Ridge bytes
    std::string bytes;
    std::u16string expected;
};

template <class String> String Repeat(const String& text, int times) {
    String out;
    for (int i = 0; i < times; ++i) {
        out += text;
    }
    return out;
}

TEST(EntryNameTest, DecodesMalformedNamesAndMakesThemPlain) {
    const NameCase cases[] = {
        {false, "a\xC3(", u"a\u00C3("},                              // invalid UTF-8 is Latin-1
        {false, "\xE0\x80\xAF", u"\u00E0\u0080\u00AF"},              // overlong UTF-8 too
        {false, "\xED\xA0\x80", u"\u00ED\u00A0\u0080"},              // so is an encoded surrogate
        {false, std::string("a\0b/\\", 5), u"a\uFFFDb\uFF0F\uFF3C"}, // ASCII, not plain
        {false, "\xC3\xA9/", u"\u00E9\uFF0F"},                       // UTF-8, not plain
        {false, "", u"\uFFFD"},
        {false, ".", u"\uFF0E"},
        {false, "..", u"\uFF0E\uFF0E"},
        {false, "...", u"..."},
        {false, std::string(300, 'a'), std::u16string(kMaxNameUnits, u'a')},
        {false, Repeat(std::string("\xF0\x9F\x98\x80"), 141),
         Repeat(std::u16string(u"\U0001F600"), 140)},      // pairs kept whole
        {true, std::string("\xD8\x3D\0a", 4), u"\uFFFDa"}, // lone high surrogate
        {true, std::string("\xDE\x00", 2), u"\uFFFD"},     // lone low surrogate
        {true, std::string("\0a\0/\0", 5), u"a\uFF0F"},    // odd byte dropped
    };
    for (const NameCase& c : cases) {
        EntryName name;
        name.Clear();
        auto* bytes = reinterpret_cast<const uint8_t*>(c.bytes.data());
        if (c.joliet) {
            name.AppendUtf16Be(bytes, c.bytes.size());
        } else {
            name.AppendUtf8OrLatin1(bytes, c.bytes.size());
        }
        name.MakePlain();
        EXPECT_EQ(std::u16string(name.Data(), name.Length()), c.expected) << c.bytes;
    }
}

TEST(IsoDateTest, DecodesBothForms) {
    struct Case {
        uint8_t bytes[7];
        bool valid;
        int64_t utc;
    };
    const Case shortForms[] = {
        {{101, 2, 3, 5, 5, 6, 4}, true, 981173106},                          // GMT+1
        {{101, 2, 2, 16, 5, 6, static_cast<uint8_t>(-48)}, true, 981173106}, // GMT-12
        {{101, 2, 3, 4, 5, 6, 100}, true, 981173106}, // offset out of range ignored
        {{0, 0, 0, 0, 0, 0, 0}, false, 0},
        {{101, 13, 3, 4, 5, 6, 0}, false, 0},
        {{0, 1, 1, 0, 0, 0, 0}, true, -2208988800},
        {{255, 12, 31, 23, 59, 59, 0}, true, 5869583999},
    };
    for (const Case& c : shortForms) {
        int64_t utc = 0;
        EXPECT_EQ(IsoDate::DecodeShort(c.bytes, &utc), c.valid) << int{c.bytes[0]};
        EXPECT_EQ(c.valid ? utc : 0, c.utc) << int{c.bytes[0]};
    }
    const std::pair<const char*, int64_t> longForms[] = {
        {"2001020305050600", 981173106}, {"0000000000000000", -1}, {"20010203x5050600", -1}};
    for (const auto& [digits, utc] : longForms) {
        uint8_t stamp[17];
        std::memcpy(stamp, digits, 16);
        stamp[16] = 4; // GMT+1
        int64_t got = -1;
        EXPECT_EQ(IsoDate::DecodeLong(stamp, &got), utc != -1) << digits;
        EXPECT_EQ(got, utc) << digits;
    }
}

// The cache must give what localtime_r gives, also around changes off the quarter hour
// (Amsterdam's local mean time until 1937) and in a zone set after an earlier listing.
TEST(LocalTimeCacheTest, AgreesWithTheZoneAtEachInstant) {
    struct Case {
        const char* zone;
        int64_t around; // a change of offset
    };
    const Case cases[] = {
        {"CET-1CEST,M3.5.0,M10.5.0/3", 985482000}, // 2001-03-25 01:00 UTC
        {"Europe/Amsterdam", -1693700372},         // 1916-04-30 23:40:28 UTC
        {"Asia/Kolkata", -764145000},              // 1945-10-14 17:30 UTC
    };
    std::string saved = getenv("TZ") != nullptr ? getenv("TZ") : "";
    LocalTimeCache cache;
    for (const Case& c : cases) {
        setenv("TZ", c.zone, 1);
        tzset();
        cache.Clear();
        for (int64_t t = c.around - 3600; t < c.around + 3600; t += 37) {
            FileTime got = cache.ToLocalFileTime(t);
            FileTime expected = IsoDate::ToFileTime(t + IsoDate::LocalOffset(t));
            ASSERT_EQ(got.dwLowDateTime, expected.dwLowDateTime) << c.zone << " " << t;
            ASSERT_EQ(got.dwHighDateTime, expected.dwHighDateTime) << c.zone << " " << t;
        }
    }
    setenv("TZ", saved.c_str(), 1);
    tzset();
    FileTime before1601 = IsoDate::ToFileTime(-11644473601);
    EXPECT_EQ(before1601.dwLowDateTime | before1601.dwHighDateTime, 0u);
}

TEST(VolumeIndexTest, RenamesClashesWithinTheNameLimitAndResolves) {
    VolumeIndex index;
    index.AddRoot({0, 0}, 0, false);
    auto add = [&](std::u16string_view name, bool directory = false) {
        IndexEntry e{};
        e.flags = directory ? kEntryDirectory : 0;
        index.AppendName(name.data(), static_cast<uint32_t>(name.size()), &e);
        index.AddPending(e, 0);
    };
    std::u16string longName(kMaxNameUnits, u'x');
    for (std::u16string_view name : {u"b", u"a", u"b", u"b (2)", u"b"}) {
        add(name, name == u"a");
    }
    add(longName);
    add(longName);
    index.CommitChildren(VolumeIndex::kRoot);
    std::vector<std::u16string> names;
    for (uint32_t i = 0; i < index.Entry(0).childCount; ++i) {
        names.push_back(index.Name(index.Entry(index.Entry(0).firstChild + i)).ToU16String());
    }
    std::u16string renamed = longName.substr(4) + u" (2)";
    EXPECT_EQ(names, (std::vector<std::u16string>{u"a", u"b", u"b (2)", u"b (3)", u"b (4)", renamed,
                                                  longName}));
    add(u"x");
    index.CommitChildren(index.Resolve(u"a"));
    EXPECT_NE(index.Resolve(u"a\\x"), VolumeIndex::kNotFound);
    EXPECT_EQ(index.Resolve(u"b\\x"), VolumeIndex::kNotFound); // b is a file
    EXPECT_EQ(index.Resolve(u"a\\"), VolumeIndex::kNotFound);
    EXPECT_EQ(index.FolderCount(), 1u);
    EXPECT_EQ(index.FileCount(), 7u);
}

TEST(VolumeIndexTest, CompactingExtentsKeepsWhatEveryFileReads) {
    constexpr uint64_t kHighLba = uint64_t{1} << 33;
    struct Case {
        const char16_t* name;
        uint64_t size;
        uint16_t flags;
        std::vector<Extent> extents;
    };
    const std::vector<Case> cases = {
        {u"plain", 5000, 0, {{100, 5000}}},
        {u"empty", 0, 0, {}},
        {u"zeros", 4096, 0, {{0, 4096, 0, true}}},
        {u"embedded", 40, 0, {{7, 40, 176}}},
        {u"short extent", 9000, 0, {{300, 4096}}},
        {u"fragments", 6000, 0, {{10, 2048}, {50, 3952}}},
        {u"zisofs", 70000, kEntryZisofs, {{20, 3000}}},
        {u"high", 100, 0, {{kHighLba, 100}}},
    };
    VolumeIndex index;
    index.AddRoot({16, 2048}, 0, false);
    IndexEntry folder{};
    folder.flags = kEntryDirectory;
    index.AppendName(u"dir", 3, &folder);
    folder.firstExtent = index.AppendExtent({18, 2048});
    folder.extentCount = 1;
    index.AddPending(folder, 0);
    for (const Case& c : cases) {
        IndexEntry e{};
        e.SetSize(c.size);
        e.flags = c.flags;
        const std::u16string_view name(c.name);
        index.AppendName(name.data(), static_cast<uint32_t>(name.size()), &e);
        e.firstExtent = static_cast<uint32_t>(index.ExtentCount());
        e.extentCount = static_cast<uint32_t>(c.extents.size());
        for (const Extent& x : c.extents) {
            index.AppendExtent(x);
        }
        index.AddPending(e, 0);
    }
    index.CommitChildren(VolumeIndex::kRoot);
    // A folder that its scan never reached holds its directory's extent where children go,
    // and has none.
    const IndexEntry& unlisted = index.Entry(index.Resolve(u"dir"));
    EXPECT_EQ(index.ExtentAt(unlisted.firstExtent).lba, 18u);
    EXPECT_EQ(unlisted.Children(), 0u);
    EXPECT_EQ(index.Resolve(u"dir\\dir"), VolumeIndex::kNotFound);
    index.CompactExtents();

    EXPECT_EQ(index.Entry(index.Resolve(u"dir")).extentCount, 0u);
    // Only the files that an entry cannot hold keep extents in the array.
    EXPECT_EQ(index.ExtentCount(), 7u);
    for (size_t k = 0; k < cases.size(); ++k) {
        const Case& c = cases[k];
        const IndexEntry& e = index.Entry(index.Resolve(c.name));
        ASSERT_EQ(e.extentCount, c.extents.size()) << "case " << k;
        for (uint32_t i = 0; i < e.extentCount; ++i) {
            const Extent got = index.ExtentOf(e, i);
            const Extent& want = c.extents[i];
            EXPECT_EQ(std::tie(got.lba, got.length, got.offset, got.zeros),
                      std::tie(want.lba, want.length, want.offset, want.zeros))
                << "case " << k << " extent " << i;
        }
    }
}

} // namespace
} // namespace qmz
