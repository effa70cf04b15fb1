// The engine driven through its exported entry point, as the program drives it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "TestFiles.h"

#include "IBwRegPath.h"
#include "IClassFactory.h"
#include "IQmzEngine.h"
#include "IQmzFileSystem.h"
#include "IQmzReader.h"
#include "QmzExports.h"

// The entry points, linked in from qmz_core.
extern "C" qmz::Result DllGetClassObject(const qmz::Guid* clsid, const qmz::Guid* iid, void** ppv);
extern "C" qmz::Result DllCanUnloadNow();

namespace qmz::test {

using namespace testsupport;

// Names each case of a parameterised test after its `name`.
inline constexpr auto kCaseName = [](const auto& info) { return std::string(info.param.name); };

// One engine, drive and reader on one image.
class Session {
public:
    Session();
    ~Session();
    Result Open(const fs::path& image);
    // Start, Wait until done, Finish: the result of Finish.
    Result Scan();
    // The whole tree through FindFirst/FindNext; refused listings are counted in `failures`.
    Tree Walk(const std::u16string& folder = u"", const std::string& prefix = "");
    // The file's bytes through OpenFile/ReadFile, in reads of `chunk` bytes.
    Result ReadAll(const std::string& path, std::vector<uint8_t>* out, uint32_t chunk = 32768);

    IQmzReader* reader = nullptr;
    IQmzFileSystem* fs = nullptr;
    int failures = 0;

private:
    IQmzEngine* engine_ = nullptr;
    IQmzDrive* drive_ = nullptr;
};

} // namespace qmz::test
