// An image file opened read-only, with the logical sectors it holds.
#pragma once

#include <memory>

#include "ComSupport.h"
#include "IQmzDrive.h"
#include "ImageFile.h"
#include "RawSectorSource.h"
#include "SectorSource.h"

namespace qmz {

class Drive final : public IQmzDrive {
public:
    Drive() = default;

    Result QueryInterface(const Guid& iid, void** ppv) override;
    uint32_t AddRef() override { return refs_.Add(); }
    uint32_t Release() override;

    // Opens the image and decides by its content how it records its sectors and whether they
    // hold a volume the engine reads.
    Result Open(const char* utf8Path);
    SectorSource& Sectors() { return *sectors_; }
    // After a scan: the directory sectors it viewed are not read again for a long while.
    void DropViews() const { file_.DropViews(); }

private:
    ~Drive() = default;
    Result UseLayout(const SectorLayout& layout);

    RefCount refs_;
    ImageFile file_;
    std::unique_ptr<SectorSource> sectors_;
};

} // namespace qmz
