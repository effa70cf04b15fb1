// Name decoding, time conversion and the index's handling of clashing names.
#include <cstring>
#include <gtest/gtest.h>

#include "EntryName.h"
#include "IsoDate.h"
#include "VolumeIndex.h"

namespace qmz {
namespace {

enum class Codec { kLatin1, kUtf8OrLatin1, kUtf16Be };

struct NameCase {
    const char* what;
    Codec codec;
    std::string bytes;
    bool stripVersion;
    std::u16string expected;
};

const NameCase kNameCases[] = {
    {"version removed", Codec::kLatin1, "README.TXT;1", true, u"README.TXT"},
    {"dot left by an empty extension", Codec::kLatin1, "MAKEFILE.;1", true, u"MAKEFILE"},
    {"semicolon without digits kept", Codec::kLatin1, "A;B", true, u"A;B"},
    {"folder names keep their dot", Codec::kLatin1, "V1.", false, u"V1."},
    {"Latin-1 byte", Codec::kLatin1, "caf\xE9", false, u"caf\u00E9"},
    {"valid UTF-8", Codec::kUtf8OrLatin1,
     "Gr\xC3\xBC\xC3\x9F"
     "e",
     false, u"Gr\u00FC\u00DFe"},
    {"four-byte UTF-8", Codec::kUtf8OrLatin1, "\xF0\x9F\x98\x80", false, u"\U0001F600"},
    {"invalid UTF-8 is Latin-1", Codec::kUtf8OrLatin1, "a\xC3(", false, u"a\u00C3("},
    {"overlong UTF-8 is Latin-1", Codec::kUtf8OrLatin1, "\xE0\x80\xAF", false,
     u"\u00E0\u0080\u00AF"},
    {"backslash and slash", Codec::kUtf8OrLatin1, "a\\b/c", false, u"a\uFF3Cb\uFF0Fc"},
    {"NUL", Codec::kUtf8OrLatin1, std::string("a\0b", 3), false, u"a\uFFFDb"},
    {"empty", Codec::kUtf8OrLatin1, "", false, u"\uFFFD"},
    {"dot", Codec::kUtf8OrLatin1, ".", false, u"\uFF0E"},
    {"dot dot", Codec::kUtf8OrLatin1, "..", false, u"\uFF0E\uFF0E"},
    {"three dots stay", Codec::kUtf8OrLatin1, "...", false, u"..."},
    {"Joliet with version", Codec::kUtf16Be, std::string("\0a\0;\0001", 6), true, u"a"},
    {"Joliet surrogate pair", Codec::kUtf16Be, std::string("\xD8\x3D\xDE\x00", 4), false,
     u"\U0001F600"},
    {"Joliet lone high surrogate", Codec::kUtf16Be, std::string("\xD8\x3D\0a", 4), false,
     u"\uFFFDa"},
    {"Joliet lone low surrogate", Codec::kUtf16Be, std::string("\xDE\x00", 2), false, u"\uFFFD"},
    {"Joliet odd byte dropped", Codec::kUtf16Be, std::string("\0a\0", 3), false, u"a"},
};

TEST(EntryNameTest, DecodesAndMakesPlain) {
    for (const NameCase& c : kNameCases) {
        EntryName name;
        name.Clear();
        auto* bytes = reinterpret_cast<const uint8_t*>(c.bytes.data());
        switch (c.codec) {
        case Codec::kLatin1:
            name.AppendLatin1(bytes, c.bytes.size());
            break;
        case Codec::kUtf8OrLatin1:
            name.AppendUtf8OrLatin1(bytes, c.bytes.size());
            break;
        case Codec::kUtf16Be:
            name.AppendUtf16Be(bytes, c.bytes.size());
            break;
        }
        if (c.stripVersion) {
            name.StripFileVersion();
        }
        name.MakePlain();
        EXPECT_EQ(std::u16string(name.Data(), name.Length()), c.expected) << c.what;
    }
}

TEST(EntryNameTest, TruncatesAtCodePointBoundary) {
    std::string emoji;
    for (int i = 0; i < 200; ++i) {
        emoji += "\xF0\x9F\x98\x80";
    }
    EntryName name;
    name.Clear();
    name.AppendUtf8OrLatin1(reinterpret_cast<const uint8_t*>(emoji.data()), emoji.size());
    EXPECT_EQ(name.Length(), kMaxNameUnits - 1); // 140 pairs; the 141st would not fit
    EXPECT_TRUE(name.Data()[name.Length() - 1] >= 0xDC00);
}

struct DateCase {
    const char* what;
    uint8_t bytes[7];
    bool valid;
    int64_t utc;
};

const DateCase kDateCases[] = {
    {"GMT", {101, 2, 3, 4, 5, 6, 0}, true, 981173106},
    {"GMT+1 is an hour earlier in UTC", {101, 2, 3, 5, 5, 6, 4}, true, 981173106},
    {"GMT-12", {101, 2, 2, 16, 5, 6, static_cast<uint8_t>(-48)}, true, 981173106},
    {"offset out of range is ignored", {101, 2, 3, 4, 5, 6, 100}, true, 981173106},
    {"all zero", {0, 0, 0, 0, 0, 0, 0}, false, 0},
    {"month 13", {101, 13, 3, 4, 5, 6, 0}, false, 0},
    {"hour 24", {101, 1, 3, 24, 5, 6, 0}, false, 0},
    {"1900", {0, 1, 1, 0, 0, 0, 0}, true, -2208988800},
    {"2155", {255, 12, 31, 23, 59, 59, 0}, true, 5869583999},
};

TEST(IsoDateTest, DecodesShortForm) {
    for (const DateCase& c : kDateCases) {
        int64_t utc = 0;
        EXPECT_EQ(IsoDate::DecodeShort(c.bytes, &utc), c.valid) << c.what;
        if (c.valid) {
            EXPECT_EQ(utc, c.utc) << c.what;
        }
    }
}

TEST(IsoDateTest, DecodesLongForm) {
    int64_t utc = 0;
    uint8_t stamp[17];
    std::memcpy(stamp, "2001020305050600", 16);
    stamp[16] = 4; // GMT+1
    ASSERT_TRUE(IsoDate::DecodeLong(stamp, &utc));
    EXPECT_EQ(utc, 981173106);
    std::memcpy(stamp, "0000000000000000", 16);
    EXPECT_FALSE(IsoDate::DecodeLong(stamp, &utc));
    std::memcpy(stamp, "20010203x5050600", 16);
    EXPECT_FALSE(IsoDate::DecodeLong(stamp, &utc));
}

TEST(IsoDateTest, LocalFileTimeFollowsTheZoneAtThatInstant) {
    std::string saved = getenv("TZ") != nullptr ? getenv("TZ") : "";
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    constexpr int64_t kWinter = 981173106; // February: UTC+1
    constexpr int64_t kSummer = 994133106; // July: UTC+2
    auto seconds = [](FileTime ft) {
        uint64_t ticks = (uint64_t{ft.dwHighDateTime} << 32) | ft.dwLowDateTime;
        return static_cast<int64_t>(ticks / 10000000) - 11644473600;
    };
    EXPECT_EQ(seconds(IsoDate::ToLocalFileTime(kWinter)), kWinter + 3600);
    EXPECT_EQ(seconds(IsoDate::ToLocalFileTime(kSummer)), kSummer + 7200);
    setenv("TZ", saved.c_str(), 1);
    tzset();
    FileTime before1601 = IsoDate::ToLocalFileTime(-11644473601 - 86400);
    EXPECT_EQ(before1601.dwLowDateTime | before1601.dwHighDateTime, 0u);
}

class IndexBuilder {
public:
    explicit IndexBuilder(VolumeIndex& index) : index_(index) {}
    void Add(std::u16string_view name, bool directory = false) {
        IndexEntry e{};
        e.flags = directory ? kEntryDirectory : 0;
        e.nameOffset = index_.AppendName(name.data(), static_cast<uint32_t>(name.size()));
        e.nameLength = static_cast<uint16_t>(name.size());
        index_.Pending().push_back(e);
    }

private:
    VolumeIndex& index_;
};

std::vector<std::u16string> Children(const VolumeIndex& index, uint32_t folder) {
    std::vector<std::u16string> names;
    const IndexEntry& f = index.Entry(folder);
    for (uint32_t i = f.firstChild; i < f.firstChild + f.childCount; ++i) {
        names.emplace_back(index.Name(index.Entry(i)));
    }
    return names;
}

TEST(VolumeIndexTest, SortsRenamesClashesAndResolves) {
    VolumeIndex index;
    index.AddRoot({0, 0}, 0, false);
    IndexBuilder b(index);
    b.Add(u"b");
    b.Add(u"a", true);
    b.Add(u"b");
    b.Add(u"b (2)"); // taken already: the second "b" becomes "b (3)"
    b.Add(u"b");
    index.CommitChildren(VolumeIndex::kRoot);
    EXPECT_EQ(Children(index, 0),
              (std::vector<std::u16string>{u"a", u"b", u"b (2)", u"b (3)", u"b (4)"}));
    uint32_t a = index.Resolve(u"a");
    ASSERT_NE(a, VolumeIndex::kNotFound);
    b.Add(u"x");
    index.CommitChildren(a);
    EXPECT_EQ(index.Resolve(u""), VolumeIndex::kRoot);
    EXPECT_NE(index.Resolve(u"a\\x"), VolumeIndex::kNotFound);
    EXPECT_EQ(index.Resolve(u"a\\y"), VolumeIndex::kNotFound);
    EXPECT_EQ(index.Resolve(u"b\\x"), VolumeIndex::kNotFound); // b is a file
    EXPECT_EQ(index.Resolve(u"a\\"), VolumeIndex::kNotFound);
    EXPECT_EQ(index.FolderCount(), 1u);
    EXPECT_EQ(index.FileCount(), 5u);
}

TEST(VolumeIndexTest, NumberedNameOfALongNameStaysWithinTheLimit) {
    VolumeIndex index;
    index.AddRoot({0, 0}, 0, false);
    IndexBuilder b(index);
    std::u16string longName(kMaxNameUnits, u'x');
    b.Add(longName);
    b.Add(longName);
    index.CommitChildren(VolumeIndex::kRoot);
    std::vector<std::u16string> names = Children(index, 0);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0].size(), kMaxNameUnits);
    EXPECT_EQ(names[1].size(), kMaxNameUnits);
    EXPECT_EQ(names[0].substr(kMaxNameUnits - 4), u" (2)");
}

} // namespace
} // namespace qmz
