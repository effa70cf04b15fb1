#include "Drive.h"

#include <new>

#include "IsoVolume.h"
#include "PlainSectorSource.h"
#include "UdfVolume.h"

namespace qmz {

Result Drive::QueryInterface(const Guid& iid, void** ppv) {
    if (ppv == nullptr) {
        return kEngineBadParameter;
    }
    *ppv = nullptr;
    if (iid == kIidUnknown || iid == kIidQmzDriveObject) {
        // The private identifier hands out the object itself, for Reader::Attach.
        *ppv =
            iid == kIidQmzDriveObject ? static_cast<void*>(this) : static_cast<IQmzUnknown*>(this);
        AddRef();
        return kOk;
    }
    return kNoInterface;
}

uint32_t Drive::Release() {
    uint32_t left = refs_.Drop();
    if (left == 0) {
        delete this;
    }
    return left;
}

Result Drive::Open(const char* utf8Path) {
    Result r = file_.Open(utf8Path);
    if (r != kOk) {
        return r;
    }
    sectors_.reset(new (std::nothrow) PlainSectorSource(file_));
    if (sectors_ == nullptr) {
        return kEngineOutOfMemory;
    }
    return IsoVolume::Probe(*sectors_) || UdfVolume::Probe(*sectors_) ? kOk : kEngineBadImage;
}

} // namespace qmz
