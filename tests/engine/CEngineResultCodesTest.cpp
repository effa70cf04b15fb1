#include "CEngineResultCodes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kBufferChars = 400;
constexpr char16_t kUntouched = u'#';

struct MembershipCase {
    uint32_t code;
    bool bMember;
};

TEST(EngineResultCodes, MembershipTestsTheFamilyBitsOnlyAndAForeignCodeTouchesNothing) {
    const MembershipCase cases[] = {
        {0x60FF0001, true},  {0xE0FF0030, true},  {0x20FF0001, true},  {0xA1FF0001, true},
        {0xFFFFFFFF, true},  {0x80004005, false}, {0xC0FF0001, false}, {0xE0FE0001, false},
        {0xEB020A06, false}, {0x00000000, false}, {0xA0000000, false},
    };
    for (const MembershipCase& c : cases) {
        EXPECT_EQ(CEngineResultCodes::IsEngineCode(c.code), c.bMember) << std::hex << c.code;
        if (!c.bMember) {
            char16_t buffer[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
            uint32_t nCount = 7;
            EXPECT_FALSE(CEngineResultCodes::GetEngineCodeText(c.code, 4, buffer, &nCount));
            EXPECT_EQ(buffer[0], kUntouched) << std::hex << c.code;
            EXPECT_EQ(nCount, 7u) << std::hex << c.code;
        }
    }
}

struct TextCase {
    const char* name;
    uint32_t code;
    uint32_t nCapacity;
    bool bFound;
    std::u16string expected; // what the buffer holds up to the capacity
    uint32_t nCount;
};

TEST(EngineResultCodes, TextLookupFollowsWcsncpy) {
    const std::u16string kRunning = u"The operation is still running.";
    const std::u16string kLock = u"There was a problem about the exclusive-lock on the selected "
                                 u"drive.\n(1) The selected drive may be in use by another "
                                 u"application. Please access another drive.\n(2) The selected "
                                 u"drive may be unlocked.\n";
    const TextCase cases[] = {
        {"status", 0x60FF0001, kBufferChars, true, kRunning, 31},
        {"cut at capacity", 0x60FF0001, 10, true, u"The operat", 10},
        {"exactly the length", 0x60FF0001, 31, true, kRunning, 31},
        {"trailing line feed kept", 0xE0FF0076, kBufferChars, true, kLock,
         static_cast<uint32_t>(kLock.size())},
        {"member without row", 0xE0FF0030, kBufferChars, false, u"", 0},
        {"member outside the classes", 0x20FF0001, kBufferChars, false, u"", 0},
    };
    for (const TextCase& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<char16_t> buffer(kBufferChars + 1, kUntouched);
        uint32_t nCount = 12345;
        EXPECT_EQ(
            CEngineResultCodes::GetEngineCodeText(c.code, c.nCapacity, buffer.data(), &nCount),
            c.bFound);
        EXPECT_EQ(nCount, c.nCount);
        EXPECT_EQ(std::u16string(buffer.data(), c.expected.size()), c.expected);
        // wcsncpy pads with zeros up to the capacity and never writes beyond it.
        const size_t nPadEnd = c.bFound ? c.nCapacity : 1;
        for (size_t i = c.expected.size(); i < nPadEnd; ++i) {
            ASSERT_EQ(buffer[i], u'\0') << i;
        }
        EXPECT_EQ(buffer[std::max<size_t>(nPadEnd, 1)], kUntouched);
    }
    EXPECT_TRUE(CEngineResultCodes::GetEngineCodeText(0x60FF0001, 4,
                                                      std::vector<char16_t>(4).data(), nullptr))
        << "the count is optional";
}

} // namespace
