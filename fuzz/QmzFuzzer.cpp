// Hands arbitrary bytes to the engine as an image file and drives it as the program does:
// open the drive, load, scan, list every folder, read every file. The sanitizers and
// libFuzzer's limits turn any crash, hang or excessive allocation into a saved input.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "IClassFactory.h"
#include "IQmzEngine.h"
#include "IQmzFileSystem.h"
#include "IQmzReader.h"
#include "ImageMemoryFile.h"
#include "QmzExports.h"
#include "SparseImage.h"

extern "C" qmz::Result DllGetClassObject(const qmz::Guid* clsid, const qmz::Guid* iid, void** ppv);

namespace {

using namespace qmz;

// A file's claimed size may exceed what the image holds many times over (extents that overlap
// or repeat); reading is cut here so that each input stays quick. Twice the largest image is
// enough to read every file of any image once.
constexpr uint64_t kMaxBytesReadPerInput = 4u << 20;
constexpr uint32_t kReadChunk = 32768;
constexpr uint32_t kWaitMs = 100;

class Driver {
public:
    explicit Driver(IQmzFileSystem* fs) : fs_(fs) {}

    void WalkAll() {
        std::vector<std::u16string> folders{u""};
        while (!folders.empty()) {
            std::u16string folder = std::move(folders.back());
            folders.pop_back();
            Visit(folder, &folders);
        }
    }

private:
    // One listing at a time: gather the folder's entries, then read its files.
    void Visit(const std::u16string& folder, std::vector<std::u16string>* folders) {
        std::vector<std::u16string> files;
        file_attr attr{};
        if (fs_->FindFirst(folder.c_str(), &attr) != kOk) {
            return;
        }
        do {
            std::u16string path = folder.empty() ? attr.strName : folder + u"\\" + attr.strName;
            ((attr.uAttributes & kAttrDirectory) != 0 ? *folders : files).push_back(path);
        } while (fs_->FindNext(&attr) == kOk);
        fs_->FindClose();
        for (const auto& file : files) {
            Read(file);
        }
    }

    void Read(const std::u16string& path) {
        uint64_t size = 0;
        if (fs_->OpenFile(path.c_str(), &size) != kOk) {
            return;
        }
        uint32_t got = 0;
        for (uint64_t done = 0; done < size && budget_ > 0; done += got) {
            if (fs_->ReadFile(buffer_, kReadChunk, &got, 0) != kOk || got == 0) {
                break;
            }
            budget_ -= std::min<uint64_t>(budget_, got);
        }
        fs_->CloseFile();
    }

    IQmzFileSystem* fs_;
    uint64_t budget_ = kMaxBytesReadPerInput;
    uint8_t buffer_[kReadChunk];
};

void ScanAndWalk(IQmzReader* reader) {
    if (reader->Load() != kOk) {
        return;
    }
    if (reader->Start(kScanOperation, 0, 0) == kOk) {
        uint32_t state = 0;
        float progress = 0;
        while (reader->Wait(kWaitMs, &state, &progress) == kWaitStillRunning) {
        }
        IQmzFileSystem* fs = nullptr;
        if (reader->Finish() == kOk &&
            reader->QueryInterface(kIidQmzFileSystem, reinterpret_cast<void**>(&fs)) == kOk) {
            fsInfo info{};
            fs->GetFsInfo(&info);
            Driver(fs).WalkAll();
            fs->Release();
        }
    }
    reader->Unload();
}

void Open(IQmzEngine* engine, const std::u16string& path) {
    IQmzDrive* drive = nullptr;
    if (engine->OpenDrive(0, kAccessRead, path.c_str(), &drive) == kOk) {
        IQmzReader* reader = nullptr;
        if (engine->CreateReader(kIidQmzReader, &reader) == kOk) {
            if (reader->Attach(drive) == kOk) {
                ScanAndWalk(reader);
                reader->Detach();
            }
            reader->Release();
        }
    }
    if (drive != nullptr) {
        drive->Release();
    }
}

IQmzEngine* CreateEngine() {
    IClassFactory* factory = nullptr;
    IQmzEngine* engine = nullptr;
    if (DllGetClassObject(&kClsidQmzEngine, &kIidClassFactory,
                          reinterpret_cast<void**>(&factory)) == kOk) {
        factory->CreateInstance(nullptr, kIidQmzEngine, reinterpret_cast<void**>(&engine));
        factory->Release();
    }
    return engine;
}

} // namespace

// Inputs are compact images (see SparseImage.h), or raw ones.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static ovrin::fuzz::ImageMemoryFile file;
    if (!file.Write(ovrin::fuzz::SparseImage::Parse(data, size))) {
        return 0;
    }
    const std::string path = file.Path();
    IQmzEngine* engine = CreateEngine();
    if (engine != nullptr) {
        Open(engine, std::u16string(path.begin(), path.end()));
        engine->Release();
    }
    return 0;
}
