// The two functions that an engine library exports, by name, with C linkage.
#pragma once

#include "QmzTypes.h"

namespace qmz {

using PfnDllGetClassObject = Result (*)(const Guid* clsid, const Guid* iid, void** ppv);
using PfnDllCanUnloadNow = Result (*)();

inline constexpr const char* kExportGetClassObject = "DllGetClassObject";
inline constexpr const char* kExportCanUnloadNow = "DllCanUnloadNow";

} // namespace qmz
