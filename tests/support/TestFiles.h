// Helpers shared by the tests that work on real images: temporary folders, shell commands,
// files, and bsdtar's view of an image as the reference that our reader is checked against.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace testsupport {

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
// Runs a shell command and returns what it wrote to standard output; its exit status goes to
// pStatus.
std::string CommandOutput(const std::string& command, int* pStatus = nullptr);
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

// bsdtar's listing of an image, with names mapped as our engine maps them ('\' becomes
// U+FF3C). `rawPaths` gives bsdtar's own path for each mapped path.
Tree BsdtarTree(const fs::path& image, std::map<std::string, std::string>* rawPaths = nullptr);
// 7-Zip's listing of an image (`7z l -slt`), for UDF, which bsdtar does not read.
Tree SevenZipTree(const fs::path& image);
// A folder on disk as a tree.
Tree DiskTree(const fs::path& root);

std::string ToUtf8(const std::u16string& text);
std::u16string ToUtf16(const std::string& text);

} // namespace testsupport
