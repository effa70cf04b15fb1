// The engine object: opens image files as drives and creates readers.
#pragma once

#include "ComSupport.h"
#include "IBwRegPath.h"
#include "IQmzEngine.h"

namespace qmz {

class Engine final : public IQmzEngine, public IBwRegPath {
public:
    Engine() = default;

    Result QueryInterface(const Guid& iid, void** ppv) override;
    uint32_t AddRef() override { return refs_.Add(); }
    uint32_t Release() override;

    Result OpenDrive(uint32_t reserved, uint32_t access, const char16_t* imagePath,
                     IQmzDrive** ppDrive) override;
    Result CreateReader(const Guid& iid, IQmzReader** ppReader) override;
    // The engine keeps no settings.
    Result SetRegPath(const uint32_t*, const char16_t*, uint32_t, uint32_t) override { return kOk; }

private:
    ~Engine() = default;

    RefCount refs_;
};

} // namespace qmz
