// The volume that the test engine serves, read from a plain listing file:
//   volume TEXT                    volume identifier, blanks kept
//   counts N1 N2                   fsInfo counters (default: the real counts)
//   d TICKS PATH                   a folder, PATH with '\' separators, TICKS a local FILETIME
//   f SIZE TICKS PATH              a file; its bytes are FakeContentByte's
//   fail OPERATION NTH CODE        the NTH call of OPERATION fails with CODE (0: every call)
//   wait-running N                 Wait reports a running scan N times
//   drive-on-failure               a failing OpenDrive still hands out a drive
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

struct FakeEntry {
    std::u16string name;
    bool bFolder = false;
    uint64_t size = 0;
    uint64_t ticks = 0;
};

// The bytes that the double serves for the file at a path ('\\' separators): a stream seeded by
// the whole path, so that no two files hold the same bytes and a chunk that is lost, misplaced
// or taken from another file shows.
inline uint64_t FakeContentSeed(std::u16string_view path) {
    uint64_t seed = 0xcbf29ce484222325ull; // FNV-1a
    for (const char16_t c : path) {
        seed = (seed ^ c) * 0x100000001b3ull;
    }
    return seed;
}

// One splitmix64 step at the offset.
inline uint8_t FakeContentByte(uint64_t seed, uint64_t offset) {
    uint64_t x = seed + (offset + 1) * 0x9e3779b97f4a7c15ull;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ull;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebull;
    return static_cast<uint8_t>(x ^ (x >> 31));
}

struct FakeFault {
    uint32_t nth = 0;
    int32_t code = 0;
};

struct FakeListing {
    std::u16string volumeId;
    bool bHasCounts = false;
    uint32_t counts[2] = {0, 0};
    uint32_t nWaitRunning = 0;
    bool bDriveOnFailure = false;
    std::map<std::u16string, std::vector<FakeEntry>> folders;
    std::map<std::string, FakeFault> faults;

    bool Load(const std::string& path);
    // The file at path ('\' separators), or null.
    const FakeEntry* FindFile(const std::u16string& path) const;
};
