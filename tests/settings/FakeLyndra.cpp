// A stand-in for the family's language transfer library, built for tests only. FAKE_LYNDRA
// picks its behaviour: "accept" (the default) takes any language and points to its table
// under the program's Language folder; "refuse" turns every language down; "no-object"
// gives no object.
#include "ILyndra.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

std::u16string Mode() {
    const char* pMode = std::getenv("FAKE_LYNDRA");
    const std::string mode = pMode != nullptr ? pMode : "accept";
    return std::u16string(mode.begin(), mode.end());
}

void CopyOut(const std::u16string& text, char16_t* pBuffer) {
    const size_t n = std::min<size_t>(text.size(), kLyndraBufferChars - 1);
    std::copy_n(text.begin(), n, pBuffer);
    pBuffer[n] = u'\0';
}

class FakeLyndra final : public ILyndra {
public:
    explicit FakeLyndra(std::u16string programFolder) : m_folder(std::move(programFolder)) {}

    int32_t SetLanguage(const char16_t* pszCode) override {
        m_code = pszCode;
        return Mode() == u"refuse" ? static_cast<int32_t>(0x80070057u) : 0;
    }
    int32_t GetResourcePath(char16_t* pszPath) override {
        if (Mode() == u"refuse") {
            return 1;
        }
        CopyOut(m_folder + u"/Language/" + m_code + u"/Tvnrc.txt", pszPath);
        return 0;
    }
    int32_t GetLanguage(char16_t* pszCode) override {
        CopyOut(u"Deu", pszCode);
        return 0;
    }

private:
    std::u16string m_folder;
    std::u16string m_code;
};

} // namespace

extern "C" __attribute__((visibility("default"))) ILyndra*
GetLyndra(void*, const char16_t* pszResourceXml, const char16_t*, const char16_t*, int32_t,
          int32_t) {
    if (Mode() == u"no-object") {
        return nullptr;
    }
    // The resource description lies in <program>/Lyndra/.
    std::u16string folder(pszResourceXml);
    for (int i = 0; i < 2; ++i) {
        folder = folder.substr(0, folder.rfind(u'/'));
    }
    return new FakeLyndra(folder);
}

extern "C" __attribute__((visibility("default"))) void ReleaseLyndra(ILyndra* pLyndra) {
    delete static_cast<FakeLyndra*>(pLyndra);
}
