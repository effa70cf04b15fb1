// The volume that the test engine serves, read from a plain listing file:
//   volume TEXT                    volume identifier, blanks kept
//   counts N1 N2                   fsInfo counters (default: the real counts)
//   d TICKS PATH                   a folder, PATH with '\' separators, TICKS a local FILETIME
//   f SIZE TICKS PATH              a file
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
};
