// Helpers of the engine tests: temporary folders, images made by xorriso and genisoimage, the
// engine driven through its exported entry point as the program drives it, and bsdtar's view
// of an image as the reference.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

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

namespace fs = std::filesystem;

// A folder under the system's temporary folder, removed with everything in it at the end.
class TempDir {
public:
    TempDir();
    ~TempDir();
    const fs::path& Path() const { return path_; }
    fs::path operator/(const std::string& name) const { return path_ / name; }

private:
    fs::path path_;
};

// Runs a shell command; its output goes to the test log only when it fails.
bool RunCommand(const std::string& command);
std::string Quote(const fs::path& path);

void WriteFile(const fs::path& path, const std::vector<uint8_t>& bytes, int64_t mtime = 0);
std::vector<uint8_t> ReadWholeFile(const fs::path& path);
std::vector<uint8_t> PatternBytes(size_t size, uint32_t seed);

// One entry of a tree, by its '/'-joined UTF-8 path.
struct Node {
    bool directory = false;
    uint64_t size = 0;
    int64_t mtime = 0; // seconds UTC
    friend bool operator==(const Node&, const Node&) = default;
};
using Tree = std::map<std::string, Node>;

// bsdtar's listing of an image, with names mapped as the engine maps them ('\' becomes
// U+FF3C). `rawPaths` gives bsdtar's own path for each mapped path.
Tree BsdtarTree(const fs::path& image, std::map<std::string, std::string>* rawPaths = nullptr);
// A folder on disk as a tree.
Tree DiskTree(const fs::path& root);

std::string ToUtf8(const std::u16string& text);
std::u16string ToUtf16(const std::string& text);
int64_t FileTimeToUnix(const FileTime& ft);

// The engine opened on one image through DllGetClassObject, as the program uses it.
class Session {
public:
    Session();
    ~Session();
    Result Open(const fs::path& image);
    // Start, Wait until done, Finish: the result of Finish.
    Result Scan();
    // The whole tree through FindFirst/FindNext; entries the listing refused are counted in
    // `failures`.
    Tree Walk(int* failures = nullptr);
    // The file's bytes through OpenFile/ReadFile, in reads of `chunk` bytes.
    Result ReadAll(const std::string& path, std::vector<uint8_t>* out, uint32_t chunk = 32768);

    IQmzReader* reader = nullptr;
    IQmzFileSystem* fs = nullptr;

private:
    void WalkFolder(const std::u16string& folder, const std::string& prefix, Tree* tree,
                    int* failures);

    IQmzEngine* engine_ = nullptr;
    IQmzDrive* drive_ = nullptr;
};

} // namespace qmz::test
