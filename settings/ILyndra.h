// The family's language transfer library, Lyndra/Lyndra.so: it can choose the language for the
// whole suite. The program needs three operations of its object, in this slot order.
#pragma once

#include <cstdint>

// Buffers handed to the object hold this many UTF-16 units, terminator included.
inline constexpr uint32_t kLyndraBufferChars = 260;

class ILyndra {
public:
    virtual int32_t SetLanguage(const char16_t* pszCode) = 0;
    // 0 when the buffer holds the full path of the language table to load.
    virtual int32_t GetResourcePath(char16_t* pszPath) = 0;
    // The system's language code.
    virtual int32_t GetLanguage(char16_t* pszCode) = 0;

protected:
    // The library frees the object, through ReleaseLyndra.
    ~ILyndra() = default;
};

extern "C" {
// hInstance is the program's module; bSystemDefault follows the user's setting; nVersion is 1.
using PfnGetLyndra = ILyndra* (*)(void* hInstance, const char16_t* pszResourceXml,
                                  const char16_t* pszReferenceXml, const char16_t* pszStartMenuXml,
                                  int32_t bSystemDefault, int32_t nVersion);
using PfnReleaseLyndra = void (*)(ILyndra* pLyndra);
}
