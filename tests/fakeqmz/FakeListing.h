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
#include <vector>

struct FakeEntry {
    std::u16string name;
    bool bFolder = false;
    uint64_t size = 0;
    uint64_t ticks = 0;
};

// The bytes that the double serves for every file: they differ from file to file and along a
// file, and 251 is prime to the chunk sizes, so a chunk that is lost or misplaced shows.
inline uint8_t FakeContentByte(size_t pathLength, uint64_t offset) {
    return static_cast<uint8_t>((offset + pathLength) % 251);
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
