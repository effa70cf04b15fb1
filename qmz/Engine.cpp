#include "Engine.h"

#include <string>

#include "Drive.h"
#include "Reader.h"

namespace qmz {

namespace {

// UTF-16 to UTF-8 for open(); false for a lone surrogate, which no file name can hold.
bool ToUtf8(const char16_t* text, std::string* out) {
    for (size_t i = 0; text[i] != 0; ++i) {
        uint32_t cp = text[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            return false;
        }
        if (cp < 0x80) {
            out->push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out->push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out->push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out->push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out->push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out->push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out->push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return true;
}

} // namespace

Result Engine::QueryInterface(const Guid& iid, void** ppv) {
    if (ppv == nullptr) {
        return kEngineBadParameter;
    }
    *ppv = nullptr;
    if (iid == kIidUnknown || iid == kIidQmzEngine) {
        *ppv = static_cast<IQmzEngine*>(this);
    } else if (iid == kIidBwRegPath) {
        *ppv = static_cast<IBwRegPath*>(this);
    } else {
        return kNoInterface;
    }
    AddRef();
    return kOk;
}

uint32_t Engine::Release() {
    uint32_t left = refs_.Drop();
    if (left == 0) {
        delete this;
    }
    return left;
}

Result Engine::OpenDrive(uint32_t, uint32_t access, const char16_t* imagePath,
                         IQmzDrive** ppDrive) {
    if (ppDrive == nullptr || imagePath == nullptr || (access & kAccessRead) == 0) {
        return kEngineBadParameter;
    }
    *ppDrive = nullptr;
    return ComSupport::Guarded([&] {
        std::string path;
        if (!ToUtf8(imagePath, &path)) {
            return kEngineOpenFailed;
        }
        auto* drive = new Drive();
        Result r = drive->Open(path.c_str());
        if (r != kOk) {
            drive->Release();
            return r;
        }
        *ppDrive = drive;
        return kOk;
    });
}

Result Engine::CreateReader(const Guid& iid, IQmzReader** ppReader) {
    if (ppReader == nullptr) {
        return kEngineBadParameter;
    }
    *ppReader = nullptr;
    if (iid != kIidQmzReader) {
        return kNoInterface;
    }
    return ComSupport::Guarded([&] {
        *ppReader = new Reader();
        return kOk;
    });
}

} // namespace qmz
