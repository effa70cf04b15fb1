#include "Drive.h"

#include <new>

#include "IsoVolume.h"
#include "PlainSectorSource.h"
#include "RawSectorSource.h"
#include "SectorContainer.h"
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
    SectorLayout layouts[SectorContainer::kMaxLayouts];
    uint32_t count = SectorContainer::Candidates(file_, layouts);
    for (uint32_t i = 0; i < count; ++i) {
        r = UseLayout(layouts[i]);
        if (r != kOk) {
            return r;
        }
        if (IsoVolume::Probe(*sectors_) || UdfVolume::Probe(*sectors_)) {
            return kOk;
        }
    }
    sectors_.reset();
    return kEngineBadImage;
}

Result Drive::UseLayout(const SectorLayout& layout) {
    bool plain = layout.start == 0 && layout.stride == kSectorSize;
    // Plain images keep the source that copies a file's bytes in one read.
    if (plain) {
        sectors_.reset(new (std::nothrow) PlainSectorSource(file_));
    } else {
        sectors_.reset(new (std::nothrow) RawSectorSource(file_, layout));
    }
    return sectors_ != nullptr ? kOk : kEngineOutOfMemory;
}

} // namespace qmz
