#include "ReaderProgress.h"

#include <algorithm>
#include <array>
#include <cstring>

void ReaderProgress::Notify(uint32_t code, const QString& payload, size_t payloadChars) const {
    if (pfnCallback == nullptr) {
        return;
    }
    std::array<char16_t, 2 * kShortPayloadChars> buffer{};
    const size_t nChars =
        std::min(static_cast<size_t>(payload.size()), std::min(payloadChars, buffer.size()) - 1);
    std::memcpy(buffer.data(), payload.utf16(), nChars * sizeof(char16_t));
    pfnCallback(code, buffer.data(), pCallbackContext);
}

void ReaderProgress::Pump() const {
    if (pfnPump != nullptr) {
        pfnPump(pPumpContext);
    }
}
