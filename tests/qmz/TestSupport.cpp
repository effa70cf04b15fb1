#include "TestSupport.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace qmz::test {

namespace {

// The engine's times are local; the tests compare them in UTC.
[[maybe_unused]] const int kUtc = (setenv("TZ", "UTC0", 1), tzset(), 0);

} // namespace

int64_t FileTimeToUnix(const FileTime& ft) {
    uint64_t ticks = (uint64_t{ft.dwHighDateTime} << 32) | ft.dwLowDateTime;
    return static_cast<int64_t>(ticks / 10000000) - 11644473600;
}

Session::Session() {
    IClassFactory* factory = nullptr;
    EXPECT_EQ(
        DllGetClassObject(&kClsidQmzEngine, &kIidClassFactory, reinterpret_cast<void**>(&factory)),
        kOk);
    EXPECT_EQ(factory->CreateInstance(nullptr, kIidQmzEngine, reinterpret_cast<void**>(&engine_)),
              kOk);
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
    std::u16string path = ToUtf16(image.string());
    Result r = engine_->OpenDrive(0, kAccessRead, path.c_str(), &drive_);
    if (r != kOk) {
        return r;
    }
    EXPECT_EQ(engine_->CreateReader(kIidQmzReader, &reader), kOk);
    EXPECT_EQ(reader->Attach(drive_), kOk);
    r = reader->Load();
    if (r == kOk) {
        EXPECT_EQ(reader->QueryInterface(kIidQmzFileSystem, reinterpret_cast<void**>(&fs)), kOk);
    }
    return r;
}

Result Session::Scan() {
    Result r = reader->Start(kScanOperation, 0, 0);
    if (r != kOk) {
        return r;
    }
    uint32_t state = 0;
    float progress = 0;
    while ((r = reader->Wait(100, &state, &progress)) == kWaitStillRunning) {
        EXPECT_GE(progress, 0.0f);
        EXPECT_LE(progress, 1.0f);
    }
    EXPECT_EQ(r, kOk);
    return reader->Finish();
}

void Session::WalkFolder(const std::u16string& folder, const std::string& prefix, Tree* tree,
                         int* failures) {
    // One listing at a time: gather the folder's entries, then go down.
    std::vector<std::pair<std::u16string, bool>> children;
    file_attr attr{};
    Result r = fs->FindFirst(folder.c_str(), &attr);
    if (r == kFindFolderEmpty) {
        return;
    }
    if (r != kOk) {
        ++*failures;
        return;
    }
    do {
        std::u16string name(attr.strName);
        bool directory = (attr.uAttributes & kAttrDirectory) != 0;
        Node node{directory, attr.ullSize, FileTimeToUnix(attr.ftLocalTime)};
        (*tree)[prefix + ToUtf8(name)] = node;
        children.emplace_back(name, directory);
    } while ((r = fs->FindNext(&attr)) == kOk);
    if (r != kFindNoMoreEntries) {
        ++*failures;
    }
    fs->FindClose();
    for (const auto& [name, directory] : children) {
        if (directory) {
            WalkFolder(folder.empty() ? name : folder + u"\\" + name, prefix + ToUtf8(name) + "/",
                       tree, failures);
        }
    }
}

Tree Session::Walk(int* failures) {
    Tree tree;
    int ignored = 0;
    WalkFolder(u"", "", &tree, failures != nullptr ? failures : &ignored);
    return tree;
}

Result Session::ReadAll(const std::string& path, std::vector<uint8_t>* out, uint32_t chunk) {
    std::u16string enginePath = ToUtf16(path);
    for (auto& c : enginePath) {
        c = c == u'/' ? u'\\' : c;
    }
    uint64_t size = 0;
    Result r = fs->OpenFile(enginePath.c_str(), &size);
    if (r != kOk) {
        return r;
    }
    out->clear();
    std::vector<uint8_t> buffer(chunk);
    uint32_t got = 0;
    while ((r = fs->ReadFile(buffer.data(), chunk, &got, 0)) == kOk && got > 0) {
        out->insert(out->end(), buffer.begin(), buffer.begin() + got);
        if (out->size() < size) {
            EXPECT_EQ(got, chunk) << "short read before the end of " << path;
        }
    }
    fs->CloseFile();
    if (r == kOk) {
        EXPECT_EQ(out->size(), size) << path;
    }
    return r;
}

} // namespace qmz::test
