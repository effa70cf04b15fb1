#include "CliFrontEnd.h"

#include "CEngineResultCodes.h"
#include "CImageReader.h"

#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace {

constexpr auto kProgressInterval = std::chrono::milliseconds(100);
constexpr uint32_t kEngineTextChars = 400;

volatile std::sig_atomic_t g_bInterrupted = 0;

void OnInterrupt(int) {
    g_bInterrupted = 1;
}

QString Hex(qmz::Result hr) {
    return QStringLiteral("0x") +
           QString::number(static_cast<uint32_t>(hr), 16).toUpper().rightJustified(8, u'0');
}

// The family's own words for an engine code, on lines of their own; empty for other codes.
QString EngineCodeText(qmz::Result hr) {
    char16_t wszText[kEngineTextChars];
    uint32_t nCount = 0;
    if (!CEngineResultCodes::GetEngineCodeText(static_cast<uint32_t>(hr), kEngineTextChars, wszText,
                                               &nCount)) {
        return QString();
    }
    QString text = QString::fromUtf16(wszText, nCount);
    while (text.endsWith(u'\n')) {
        text.chop(1);
    }
    return u'\n' + text;
}

} // namespace

CliFrontEnd::CliFrontEnd(CImageReader& reader)
    : m_reader(reader), m_bShowProgress(isatty(STDERR_FILENO) != 0) {
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    m_reader.SetPump(&CliFrontEnd::PumpThunk, this);
}

CliFrontEnd::~CliFrontEnd() {
    m_reader.SetPump(nullptr, nullptr);
    EndProgress();
}

bool CliFrontEnd::WasInterrupted() const {
    return g_bInterrupted != 0;
}

void CliFrontEnd::PumpThunk(void* pContext) {
    static_cast<CliFrontEnd*>(pContext)->Pump();
}

void CliFrontEnd::Pump() {
    if (g_bInterrupted != 0) {
        m_reader.SetStop(1);
    }
    if (!m_bShowProgress) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (m_bProgressShown && now - m_lastProgress < kProgressInterval) {
        return;
    }
    int32_t nPercent = 0;
    m_reader.GetProgress(PROGRESS_OPEN, &nPercent);
    if (nPercent != m_nShownPercent) {
        std::fprintf(stderr, "\rOpening the image: %d%%", nPercent);
        std::fflush(stderr);
        m_nShownPercent = nPercent;
    }
    m_bProgressShown = true;
    m_lastProgress = now;
}

void CliFrontEnd::EndProgress() {
    if (m_bProgressShown) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
        m_bProgressShown = false;
    }
}

QString CliFrontEnd::DescribeOpenFailure(qmz::Result hr, const QString& imagePath,
                                         bool bHasEngine) {
    const QString name = QStringLiteral("\"%1\"").arg(imagePath);
    QString sentence;
    if (!bHasEngine) {
        sentence = QStringLiteral("The image engine Qmz.so could not be loaded from the "
                                  "program's folder, so no image can be opened.");
    } else if (hr == qmz::kFail) {
        sentence = QStringLiteral("%1 could not be opened. Another Ovrin program may be "
                                  "working on it; close it there and try again.")
                       .arg(name);
    } else if (hr == qmz::kEngineBadImage || hr == qmz::kEngineUnsupportedFs) {
        sentence = QStringLiteral("%1 is not a disc image that Ovrin can read.").arg(name);
    } else if (hr == qmz::kEngineOpenFailed) {
        sentence = QStringLiteral("%1 could not be opened for reading. Check that it exists "
                                  "and that you may read it.")
                       .arg(name);
    } else if (hr == qmz::kEngineReadFailed || hr == qmz::kEngineDiscCorrupt) {
        sentence = QStringLiteral("%1 is damaged or cut short; its contents could not be "
                                  "read completely.")
                       .arg(name);
    } else if (hr == qmz::kOutOfMemory || hr == qmz::kEngineOutOfMemory) {
        sentence = QStringLiteral("There is not enough memory to open %1.").arg(name);
    } else {
        sentence = QStringLiteral("%1 could not be read.").arg(name);
    }
    return sentence + u' ' + DescribeCode(hr);
}

QString CliFrontEnd::DescribeCode(qmz::Result hr) {
    return QStringLiteral("(code %1)").arg(Hex(hr)) + EngineCodeText(hr);
}
