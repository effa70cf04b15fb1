#pragma once

#include "IQmzUnknown.h"

namespace qmz {

// The scanned volume. Paths are relative to the root, with '\' as separator, no leading or
// trailing separator; the root is the empty text. One listing and one open file at a time, kept
// apart: a file may be read between FindNext calls of a running listing.
class IQmzFileSystem : public IQmzUnknown {
public:
    virtual Result Reserved3() { return kEngineNotImplemented; }                // 3
    virtual Result Reserved4() { return kEngineNotImplemented; }                // 4
    virtual Result Reserved5() { return kEngineNotImplemented; }                // 5
    virtual Result Reserved6() { return kEngineNotImplemented; }                // 6
    virtual Result Reserved7() { return kEngineNotImplemented; }                // 7
    virtual Result Reserved8() { return kEngineNotImplemented; }                // 8
    virtual Result Reserved9() { return kEngineNotImplemented; }                // 9
    virtual Result Reserved10() { return kEngineNotImplemented; }               // 10
    virtual Result Reserved11() { return kEngineNotImplemented; }               // 11
    virtual Result Reserved12() { return kEngineNotImplemented; }               // 12
    virtual Result Reserved13() { return kEngineNotImplemented; }               // 13
    virtual Result Reserved14() { return kEngineNotImplemented; }               // 14
    virtual Result Reserved15() { return kEngineNotImplemented; }               // 15
    virtual Result Reserved16() { return kEngineNotImplemented; }               // 16
    virtual Result Reserved17() { return kEngineNotImplemented; }               // 17
    virtual Result Reserved18() { return kEngineNotImplemented; }               // 18
    virtual Result Reserved19() { return kEngineNotImplemented; }               // 19
    virtual Result Reserved20() { return kEngineNotImplemented; }               // 20
    virtual Result Reserved21() { return kEngineNotImplemented; }               // 21
    virtual Result Reserved22() { return kEngineNotImplemented; }               // 22
    virtual Result Reserved23() { return kEngineNotImplemented; }               // 23
    virtual Result Reserved24() { return kEngineNotImplemented; }               // 24
    virtual Result Reserved25() { return kEngineNotImplemented; }               // 25
    virtual Result Reserved26() { return kEngineNotImplemented; }               // 26
    virtual Result Reserved27() { return kEngineNotImplemented; }               // 27
    virtual Result GetFsInfo(fsInfo* pInfo) = 0;                                // 28
    virtual Result FindFirst(const char16_t* folderPath, file_attr* pAttr) = 0; // 29
    virtual Result FindNext(file_attr* pAttr) = 0;                              // 30
    virtual Result FindClose() = 0;                                             // 31
    virtual Result OpenFile(const char16_t* filePath, uint64_t* pSize) = 0;     // 32
    virtual Result ReadFile(void* pBuffer, uint32_t length, uint32_t* pRead,
                            uint32_t reserved) = 0;               // 33
    virtual Result Reserved34() { return kEngineNotImplemented; } // 34
    virtual Result CloseFile() = 0;                               // 35

protected:
    ~IQmzFileSystem() = default;
};

} // namespace qmz
