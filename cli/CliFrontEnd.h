// What a terminal needs around a long operation of the image reader: Ctrl+C becomes a stop
// request, progress is shown on standard error when it is a terminal, and failures become
// sentences.
#pragma once

#include "QmzTypes.h"

#include <QString>
#include <chrono>

class CImageReader;

class CliFrontEnd {
public:
    explicit CliFrontEnd(CImageReader& reader);
    ~CliFrontEnd();
    CliFrontEnd(const CliFrontEnd&) = delete;
    CliFrontEnd& operator=(const CliFrontEnd&) = delete;

    // Clears the progress line, if one is shown.
    void EndProgress();
    bool WasInterrupted() const;

    // A sentence that says what went wrong, for an image that failed to open.
    static QString DescribeOpenFailure(qmz::Result hr, const QString& imagePath, bool bHasEngine);
    // "1.5 GiB", "300 bytes".
    static QString FormatBytes(uint64_t ullBytes);
    // "(code 0x...)", followed by the engine family's own text for a code of the family.
    static QString DescribeCode(qmz::Result hr);

private:
    static void PumpThunk(void* pContext);
    void Pump();
    void ShowOpenProgress();
    void ShowCopyProgress(std::chrono::steady_clock::time_point now);

    CImageReader& m_reader;
    bool m_bShowProgress;
    bool m_bProgressShown = false;
    int32_t m_nShownPercent = -1;
    std::chrono::steady_clock::time_point m_lastProgress;
    std::chrono::steady_clock::time_point m_copyStart;
    bool m_bCopyStarted = false;
};
