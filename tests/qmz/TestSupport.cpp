#include "TestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace qmz::test {

namespace {

// The engine's times are local; the tests compare them in UTC.
[[maybe_unused]] const int kUtc = (setenv("TZ", "UTC0", 1), tzset(), 0);

int64_t FileTimeToUnix(const FileTime& ft) {
    uint64_t ticks = (uint64_t{ft.dwHighDateTime} << 32) | ft.dwLowDateTime;
    return static_cast<int64_t>(ticks / 10000000) - 11644473600;
}

} // namespace

Session::Session() {
    IClassFactory* factory = nullptr;
    EXPECT_EQ(
        DllGetClassObject(&kClsidQmzEngine, &kIidClassFactory, reinterpret_cast<void**>(&factory)),
        kOk);
    factory->CreateInstance(nullptr, kIidQmzEngine, reinterpret_cast<void**>(&engine_));
    factory->Release();
}

Session::~Session() {
    if (fs != nullptr) {
        fs->Release();
    }
    if (reader != nullptr) {
        reader->Unload();
        reader->Detach();
        reader->Release();
    }
    if (drive_ != nullptr) {
        drive_->Release();
    }
    engine_->Release();
}

Result Session::Open(const fs::path& image) {
    Result r = engine_->OpenDrive(0, kAccessRead, ToUtf16(image.string()).c_str(), &drive_);
    if (r == kOk) {
        engine_->CreateReader(kIidQmzReader, &reader);
        reader->Attach(drive_);
        r = reader->Load();
    }
    if (r == kOk) {
        reader->QueryInterface(kIidQmzFileSystem, reinterpret_cast<void**>(&fs));
    }
    return r;
}

Result Session::Scan() {
    Result r = reader->Start(kScanOperation, 0, 0);
    uint32_t state = 0;
    float progress = 0;
    while (r == kOk && (r = reader->Wait(100, &state, &progress)) == kWaitStillRunning) {
        EXPECT_TRUE(progress >= 0.0f && progress <= 1.0f) << progress;
    }
    return r == kOk ? reader->Finish() : r;
}

Tree Session::Walk(const std::u16string& folder, const std::string& prefix) {
    // One listing at a time: gather the folder's entries, then go down.
    Tree tree;
    file_attr attr{};
    Result r = fs->FindFirst(folder.c_str(), &attr);
    for (; r == kOk; r = fs->FindNext(&attr)) {
        bool directory = (attr.uAttributes & kAttrDirectory) != 0;
        tree[prefix + ToUtf8(attr.strName)] = {directory, attr.ullSize,
                                               FileTimeToUnix(attr.ftLocalTime)};
    }
    failures += r == kFindNoMoreEntries || r == kFindFolderEmpty ? 0 : 1;
    fs->FindClose();
    Tree below;
    for (const auto& [path, node] : tree) {
        if (node.directory) {
            std::u16string name = ToUtf16(path.substr(prefix.size()));
            below.merge(Walk(folder.empty() ? name : folder + u"\\" + name, path + "/"));
        }
    }
    tree.merge(below);
    return tree;
}

Result Session::ReadAll(const std::string& path, std::vector<uint8_t>* out, uint32_t chunk) {
    std::u16string enginePath = ToUtf16(path);
    std::replace(enginePath.begin(), enginePath.end(), u'/', u'\\');
    uint64_t size = 0;
    Result r = fs->OpenFile(enginePath.c_str(), &size);
    out->clear();
    std::vector<uint8_t> buffer(chunk);
    uint32_t got = 0;
    while (r == kOk && (r = fs->ReadFile(buffer.data(), chunk, &got, 0)) == kOk && got > 0) {
        out->insert(out->end(), buffer.begin(), buffer.begin() + got);
        EXPECT_TRUE(got == chunk || out->size() == size) << "short read in " << path;
    }
    fs->CloseFile();
    EXPECT_TRUE(r != kOk || out->size() == size) << path;
    return r;
}

} // namespace qmz::test
