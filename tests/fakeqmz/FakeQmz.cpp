// A test double of the engine library: it serves the volume of a listing file (FakeListing.h)
// through the engine contract, logs the calls that tests check, and fails whatever the
// listing or the environment variable FAKEQMZ_MODE (no-factory, create-fails, no-regpath,
// refuse-unload) tells it to.
#include "FakeListing.h"

#include "IBwRegPath.h"
#include "IClassFactory.h"
#include "IQmzEngine.h"
#include "IQmzFileSystem.h"
#include "IQmzReader.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

using namespace qmz;

std::string g_log;
std::atomic<int> g_nLiveObjects{0};

bool HasMode(const char* mode) {
    const char* env = std::getenv("FAKEQMZ_MODE");
    return env != nullptr && std::strstr(env, mode) != nullptr;
}

void Log(const std::string& what) {
    g_log += what + '\n';
}

// The tests give paths and key names in ASCII.
std::string Narrow(std::u16string_view text) {
    return {text.begin(), text.end()};
}

// Copies text into a terminated array, cut to fit.
template <size_t N> void CopyText(const std::u16string& text, char16_t (&out)[N]) {
    const size_t n = std::min(text.size(), N - 1);
    std::copy_n(text.data(), n, out);
    out[n] = 0;
}

// Reference counting; objects whose release the tests follow carry a log name.
template <class Interface> class RefCounted : public Interface {
public:
    explicit RefCounted(const char* logName = nullptr) : m_logName(logName) { ++g_nLiveObjects; }
    virtual ~RefCounted() { --g_nLiveObjects; }
    Result QueryInterface(const Guid&, void** ppv) override {
        *ppv = nullptr;
        return kNoInterface;
    }
    uint32_t AddRef() override { return ++m_nRefs; }
    uint32_t Release() override {
        if (m_logName != nullptr) {
            Log(std::string(m_logName) + "::Release");
        }
        return ReleaseQuietly();
    }
    uint32_t ReleaseQuietly() {
        const uint32_t n = --m_nRefs;
        if (n == 0) {
            delete this;
        }
        return n;
    }

private:
    std::atomic<uint32_t> m_nRefs{1};
    const char* m_logName;
};

// The drive owns the listing and counts calls for the listing's faults.
class FakeDrive : public RefCounted<IQmzDrive> {
public:
    FakeDrive() : RefCounted("Drive") {}
    // kOk, or the code that the listing gives this call of the operation.
    Result Fault(const char* op) {
        Log(op);
        const auto it = listing.faults.find(op);
        if (it == listing.faults.end()) {
            return kOk;
        }
        const uint32_t nCall = ++m_calls[op];
        return (it->second.nth == 0 || it->second.nth == nCall) ? it->second.code : kOk;
    }
    FakeListing listing;

private:
    std::map<std::string, uint32_t> m_calls;
};

class FakeFileSystem : public RefCounted<IQmzFileSystem> {
public:
    explicit FakeFileSystem(FakeDrive* pDrive) : RefCounted("FileSystem"), m_pDrive(pDrive) {
        m_pDrive->AddRef();
    }
    ~FakeFileSystem() override { m_pDrive->ReleaseQuietly(); }
    Result GetFsInfo(fsInfo* pInfo) override {
        const FakeListing& l = m_pDrive->listing;
        pInfo->uFileSystem = kFsUnknown;
        pInfo->uCount1 = l.counts[0];
        pInfo->uCount2 = l.counts[1];
        CopyText(l.volumeId, pInfo->strVolID);
        return m_pDrive->Fault("GetFsInfo");
    }
    Result FindFirst(const char16_t* path, file_attr* pAttr) override {
        if (const Result hr = m_pDrive->Fault("FindFirst"); hr != kOk) {
            return hr;
        }
        const auto it = m_pDrive->listing.folders.find(path);
        if (it == m_pDrive->listing.folders.end()) {
            return kEngineFileNotFound;
        }
        m_pEntries = &it->second;
        m_nNext = 0;
        return m_pEntries->empty() ? kFindFolderEmpty : Fill(pAttr);
    }
    Result FindNext(file_attr* pAttr) override {
        if (const Result hr = m_pDrive->Fault("FindNext"); hr != kOk) {
            return hr;
        }
        return m_nNext < m_pEntries->size() ? Fill(pAttr) : kFindNoMoreEntries;
    }
    Result FindClose() override { return m_pDrive->Fault("FindClose"); }
    Result OpenFile(const char16_t* path, uint64_t* pSize) override {
        *pSize = 0;
        Log("OpenFile " + Narrow(path));
        if (const Result hr = m_pDrive->Fault("OpenFile"); hr != kOk) {
            return hr;
        }
        const FakeEntry* pEntry = m_pDrive->listing.FindFile(path);
        if (pEntry == nullptr) {
            return kEngineFileNotFound;
        }
        *pSize = pEntry->size;
        m_nFileSize = pEntry->size;
        m_nSeed = FakeContentSeed(path);
        m_nOffset = 0;
        return kOk;
    }
    Result ReadFile(void* pBuffer, uint32_t length, uint32_t* pRead, uint32_t) override {
        *pRead = 0;
        if (const Result hr = m_pDrive->Fault("ReadFile"); hr != kOk) {
            return hr;
        }
        const auto n = static_cast<uint32_t>(std::min<uint64_t>(length, m_nFileSize - m_nOffset));
        auto* pBytes = static_cast<uint8_t*>(pBuffer);
        for (uint32_t i = 0; i < n; ++i) {
            pBytes[i] = FakeContentByte(m_nSeed, m_nOffset + i);
        }
        m_nOffset += n;
        *pRead = n;
        return kOk;
    }
    Result CloseFile() override { return m_pDrive->Fault("CloseFile"); }

private:
    Result Fill(file_attr* pAttr) {
        const FakeEntry& e = (*m_pEntries)[m_nNext++];
        pAttr->uAttributes = e.bFolder ? kAttrDirectory : 0;
        pAttr->ftLocalTime = {static_cast<uint32_t>(e.ticks), static_cast<uint32_t>(e.ticks >> 32)};
        pAttr->ullSize = e.size;
        CopyText(e.name, pAttr->strName);
        return kOk;
    }

    FakeDrive* m_pDrive;
    const std::vector<FakeEntry>* m_pEntries = nullptr;
    size_t m_nNext = 0;
    uint64_t m_nFileSize = 0;
    uint64_t m_nOffset = 0;
    uint64_t m_nSeed = 0;
};

class FakeReader : public RefCounted<IQmzReader> {
public:
    FakeReader() : RefCounted("Reader") {}
    ~FakeReader() override {
        if (m_pDrive != nullptr) {
            m_pDrive->ReleaseQuietly();
        }
    }
    Result QueryInterface(const Guid& iid, void** ppv) override {
        *ppv = nullptr;
        if (iid != kIidQmzFileSystem || m_pDrive == nullptr) {
            return kNoInterface;
        }
        *ppv = static_cast<IQmzFileSystem*>(new FakeFileSystem(m_pDrive));
        return kOk;
    }
    Result Attach(IQmzDrive* pDrive) override {
        m_pDrive = static_cast<FakeDrive*>(pDrive);
        m_pDrive->AddRef();
        return m_pDrive->Fault("Attach");
    }
    Result Load() override { return m_pDrive->Fault("Load"); }
    Result Start(uint32_t, uint32_t, uint32_t) override {
        m_nWaits = m_pDrive->listing.nWaitRunning;
        return m_pDrive->Fault("Start");
    }
    // A cancelled scan still reports running once, so the host must drain it.
    Result Cancel() override {
        m_nWaits = std::min<uint32_t>(m_nWaits, 1);
        return m_pDrive->Fault("Cancel");
    }
    Result Wait(uint32_t, uint32_t* pState, float* pProgress) override {
        m_pDrive->Fault("Wait");
        *pState = 0;
        if (m_nWaits == 0) {
            return kOk;
        }
        const uint32_t nTotal = m_pDrive->listing.nWaitRunning;
        *pProgress = static_cast<float>(nTotal - m_nWaits--) / static_cast<float>(nTotal);
        return kWaitStillRunning;
    }
    Result Finish() override { return m_pDrive->Fault("Finish"); }
    Result Unload() override { return m_pDrive->Fault("Unload"); }
    Result Detach() override { return m_pDrive->Fault("Detach"); }

private:
    FakeDrive* m_pDrive = nullptr;
    uint32_t m_nWaits = 0;
};

class FakeRegPath : public RefCounted<IBwRegPath> {
public:
    Result SetRegPath(const uint32_t* phKeyRoot, const char16_t* keyPath, uint32_t,
                      uint32_t) override {
        Log("SetRegPath " + std::to_string(*phKeyRoot) + " " + Narrow(keyPath));
        return kOk;
    }
};

class FakeEngine : public RefCounted<IQmzEngine> {
public:
    Result QueryInterface(const Guid& iid, void** ppv) override {
        *ppv = nullptr;
        if (iid != kIidBwRegPath || HasMode("no-regpath")) {
            return kNoInterface;
        }
        *ppv = static_cast<IBwRegPath*>(new FakeRegPath());
        return kOk;
    }
    Result OpenDrive(uint32_t, uint32_t, const char16_t* imagePath, IQmzDrive** ppDrive) override {
        *ppDrive = nullptr;
        auto pDrive = std::make_unique<FakeDrive>();
        if (!pDrive->listing.Load(Narrow(imagePath))) {
            return kEngineOpenFailed;
        }
        const Result hr = pDrive->Fault("OpenDrive");
        if (hr == kOk || pDrive->listing.bDriveOnFailure) {
            *ppDrive = pDrive.release();
        }
        return hr;
    }
    Result CreateReader(const Guid&, IQmzReader** ppReader) override {
        *ppReader = new FakeReader();
        return kOk;
    }
};

class FakeFactory : public RefCounted<IClassFactory> {
public:
    Result CreateInstance(IQmzUnknown*, const Guid& iid, void** ppv) override {
        *ppv = nullptr;
        if (iid != kIidQmzEngine || HasMode("create-fails")) {
            return kFail;
        }
        *ppv = static_cast<IQmzEngine*>(new FakeEngine());
        return kOk;
    }
    Result LockServer(int32_t) override { return kOk; }
};

} // namespace

FAKE_EXPORT Result DllGetClassObject(const Guid* clsid, const Guid* iid, void** ppv) {
    *ppv = nullptr;
    if (*clsid != kClsidQmzEngine || *iid != kIidClassFactory || HasMode("no-factory")) {
        return kFail;
    }
    *ppv = static_cast<IClassFactory*>(new FakeFactory());
    return kOk;
}

#ifndef FAKEQMZ_OMIT_CAN_UNLOAD
FAKE_EXPORT Result DllCanUnloadNow() {
    return (g_nLiveObjects == 0 && !HasMode("refuse-unload")) ? kOk : kFalse;
}
#endif

FAKE_EXPORT const char* FakeQmzCallLog() {
    return g_log.c_str();
}
