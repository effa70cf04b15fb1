// Wire types shared by the program and the disc-image engine: identifiers, result codes and the
// two records that cross the interface. Every layout here is a binary fact of the contract.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qmz {

// A 16-byte interface or class identifier, laid out like a Windows GUID.
struct Guid {
    uint32_t data1;
    uint16_t data2;
    uint16_t data3;
    uint8_t data4[8];

    friend bool operator==(const Guid&, const Guid&) = default;
};
static_assert(sizeof(Guid) == 16);

inline constexpr Guid kClsidQmzEngine = {
    0xCF34958D, 0x6AC1, 0x4EA0, {0x87, 0x47, 0xCE, 0x86, 0x0A, 0xC0, 0xA6, 0xFC}};
inline constexpr Guid kIidQmzEngine = {
    0xC3BB196E, 0x0165, 0x4AC1, {0xAA, 0xFA, 0x82, 0x9C, 0xA9, 0x83, 0x9F, 0x65}};
inline constexpr Guid kIidBwRegPath = {
    0xEBB44941, 0xAC60, 0x49AD, {0xAC, 0xA5, 0xA5, 0x49, 0x47, 0x5C, 0xF1, 0x85}};
inline constexpr Guid kIidQmzReader = {
    0x542A815A, 0x0F7C, 0x4999, {0xBB, 0xF9, 0x28, 0x52, 0x4B, 0x99, 0xAB, 0xFE}};
inline constexpr Guid kIidQmzFileSystem = {
    0x625E261C, 0x1693, 0x40D2, {0x94, 0xF7, 0x9F, 0xB0, 0x47, 0xE9, 0xBE, 0xA8}};
inline constexpr Guid kIidClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr Guid kIidUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

// Results are signed 32-bit codes; negative means failure.
using Result = int32_t;

constexpr Result MakeResult(uint32_t code) {
    return static_cast<Result>(code);
}

inline constexpr Result kOk = 0;
inline constexpr Result kFalse = 1;

// Codes that the program tests by value.
inline constexpr Result kWaitStillRunning = MakeResult(0xEB020A06);
inline constexpr Result kFindFolderEmpty = MakeResult(0xEB110107);
inline constexpr Result kFindNoMoreEntries = MakeResult(0xEB110207);

// The program's own codes.
inline constexpr Result kFail = MakeResult(0x80004005);
inline constexpr Result kUnexpected = MakeResult(0x8000FFFF);
inline constexpr Result kOutOfMemory = MakeResult(0x8007000E);
inline constexpr Result kNoInterface = MakeResult(0x80004002);
inline constexpr Result kStopped = MakeResult(0xA0000000);

// Codes of the engine family's result table that an engine returns for its failures.
inline constexpr Result kEngineBadImage = MakeResult(0xE0FF0004);
inline constexpr Result kEngineReadFailed = MakeResult(0xE0FF0006);
inline constexpr Result kEngineOpenFailed = MakeResult(0xE0FF0008);
// A call that could not do its work; the disk-room query answers it when a volume can't be read.
inline constexpr Result kEngineCallFailed = MakeResult(0xE0FF000B);
inline constexpr Result kEngineBadParameter = MakeResult(0xE0FF0016);
inline constexpr Result kEngineDiscCorrupt = MakeResult(0xE0FF0018);
inline constexpr Result kEngineUnsupportedFs = MakeResult(0xE0FF001D);
inline constexpr Result kEngineOutOfMemory = MakeResult(0xE0FF0020);
inline constexpr Result kEngineNotImplemented = MakeResult(0xE0FF0041);
inline constexpr Result kEngineFileNotFound = MakeResult(0xE0FF0048);
inline constexpr Result kEngineFindFailed = MakeResult(0xE0FF0049);

inline constexpr uint32_t kAccessRead = 0x80000000;
inline constexpr uint32_t kHkeyLocalMachine = 0x80000002;
inline constexpr uint32_t kScanOperation = 6;
inline constexpr uint32_t kAttrDirectory = 0x10;
inline constexpr uint32_t kMaxReadLength = 32768;

// A Windows FILETIME: 100-nanosecond intervals since 1601-01-01, low word first.
struct FileTime {
    uint32_t dwLowDateTime;
    uint32_t dwHighDateTime;
};
static_assert(sizeof(FileTime) == 8 && alignof(FileTime) == 4);

inline constexpr size_t kVolIdChars = 66;
inline constexpr size_t kNameChars = 282;

// The engine's own use of fsInfo's first field, which the contract leaves free: the file
// system whose tree it serves.
enum FileSystemKind : uint32_t {
    kFsUnknown = 0,
    kFsIso9660 = 1,
    kFsJoliet = 2,
    kFsRockRidge = 3,
    kFsUdf = 4,
    // The UDF tree, of an image that holds an ISO 9660 tree too (a UDF bridge disc).
    kFsUdfBridge = 5,
    // The ISO 9660:1999 tree of an enhanced volume descriptor: long names, no versions.
    kFsIso9660_1999 = 6,
};

// The volume description filled by IQmzFileSystem::GetFsInfo.
struct fsInfo {
    uint32_t uFileSystem;
    uint32_t uCount1;
    uint32_t uCount2;
    char16_t strVolID[kVolIdChars];
};
static_assert(sizeof(fsInfo) == 144);
static_assert(offsetof(fsInfo, uFileSystem) == 0);
static_assert(offsetof(fsInfo, uCount1) == 4);
static_assert(offsetof(fsInfo, uCount2) == 8);
static_assert(offsetof(fsInfo, strVolID) == 12);

// One directory entry, filled by IQmzFileSystem::FindFirst and FindNext.
struct file_attr {
    uint32_t uAttributes;
    FileTime ftLocalTime;
    uint32_t uReserved1;
    uint64_t ullSize;
    uint8_t abReserved2[540];
    char16_t strName[kNameChars];
};
static_assert(sizeof(file_attr) == 1128);
static_assert(offsetof(file_attr, uAttributes) == 0);
static_assert(offsetof(file_attr, ftLocalTime) == 4);
static_assert(offsetof(file_attr, uReserved1) == 12);
static_assert(offsetof(file_attr, ullSize) == 16);
static_assert(offsetof(file_attr, abReserved2) == 24);
static_assert(offsetof(file_attr, strName) == 564);

} // namespace qmz
