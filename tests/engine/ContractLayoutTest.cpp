// The engine contract is binary: each operation must sit at its table position.
#include "IBwRegPath.h"
#include "IClassFactory.h"
#include "IQmzEngine.h"
#include "IQmzFileSystem.h"
#include "IQmzReader.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

// Under the Itanium C++ ABI a pointer to a virtual member holds 1 + the byte offset of its
// slot in the table.
template <class Pmf> ptrdiff_t SlotOf(Pmf pmf) {
    static_assert(sizeof(Pmf) == 2 * sizeof(ptrdiff_t));
    ptrdiff_t words[2];
    std::memcpy(words, &pmf, sizeof words);
    return (words[0] - 1) / static_cast<ptrdiff_t>(sizeof(void*));
}

struct Slot {
    const char* name;
    ptrdiff_t actual;
    ptrdiff_t expected;
};

using namespace qmz;

TEST(ContractLayout, EveryOperationSitsAtItsTablePosition) {
    const Slot slots[] = {
        {"QueryInterface", SlotOf(&IQmzEngine::QueryInterface), 0},
        {"AddRef", SlotOf(&IQmzEngine::AddRef), 1},
        {"Release", SlotOf(&IQmzEngine::Release), 2},
        {"IClassFactory::CreateInstance", SlotOf(&IClassFactory::CreateInstance), 3},
        {"IQmzEngine::OpenDrive", SlotOf(&IQmzEngine::OpenDrive), 7},
        {"IQmzEngine::CreateReader", SlotOf(&IQmzEngine::CreateReader), 8},
        {"IBwRegPath::SetRegPath", SlotOf(&IBwRegPath::SetRegPath), 4},
        {"IQmzReader::Attach", SlotOf(&IQmzReader::Attach), 3},
        {"IQmzReader::Load", SlotOf(&IQmzReader::Load), 5},
        {"IQmzReader::Start", SlotOf(&IQmzReader::Start), 11},
        {"IQmzReader::Cancel", SlotOf(&IQmzReader::Cancel), 12},
        {"IQmzReader::Wait", SlotOf(&IQmzReader::Wait), 13},
        {"IQmzReader::Finish", SlotOf(&IQmzReader::Finish), 14},
        {"IQmzReader::Unload", SlotOf(&IQmzReader::Unload), 15},
        {"IQmzReader::Detach", SlotOf(&IQmzReader::Detach), 16},
        {"IQmzFileSystem::GetFsInfo", SlotOf(&IQmzFileSystem::GetFsInfo), 28},
        {"IQmzFileSystem::FindFirst", SlotOf(&IQmzFileSystem::FindFirst), 29},
        {"IQmzFileSystem::FindNext", SlotOf(&IQmzFileSystem::FindNext), 30},
        {"IQmzFileSystem::FindClose", SlotOf(&IQmzFileSystem::FindClose), 31},
        {"IQmzFileSystem::OpenFile", SlotOf(&IQmzFileSystem::OpenFile), 32},
        {"IQmzFileSystem::ReadFile", SlotOf(&IQmzFileSystem::ReadFile), 33},
        {"IQmzFileSystem::CloseFile", SlotOf(&IQmzFileSystem::CloseFile), 35},
    };
    for (const Slot& slot : slots) {
        EXPECT_EQ(slot.actual, slot.expected) << slot.name;
    }
}

} // namespace
