#include "CliFrontEnd.h"

#include "CEngineResultCodes.h"
#include "CImageReader.h"

#include <array>
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
    if (m_reader.IsCopying()) {
        ShowCopyProgress(now);
    } else {
        ShowOpenProgress();
    }
    m_bProgressShown = true;
    m_lastProgress = now;
}

void CliFrontEnd::ShowOpenProgress() {
    int32_t nPercent = 0;
    m_reader.GetProgress(PROGRESS_OPEN, &nPercent);
    if (nPercent != m_nShownPercent) {
        std::fprintf(stderr, "\rOpening the image: %d%%", nPercent);
        std::fflush(stderr);
        m_nShownPercent = nPercent;
    }
}

void CliFrontEnd::ShowCopyProgress(std::chrono::steady_clock::time_point now) {
    if (!m_bCopyStarted) {
        m_bCopyStarted = true;
        m_copyStart = now;
    }
    const uint64_t ullDone = m_reader.GetDoneBytes();
    const uint64_t ullTotal = m_reader.GetTotalBytes();
    const double seconds = std::chrono::duration<double>(now - m_copyStart).count();
    const QString rate =
        seconds > 0 ? FormatBytes(static_cast<uint64_t>(static_cast<double>(ullDone) / seconds))
                    : QStringLiteral("-");
    const uint64_t ullPercent = ullTotal != 0 ? ullDone * 100 / ullTotal : 0;
    std::fprintf(stderr, "\r\033[KExtracting: %s of %s (%llu%%), %s/s",
                 FormatBytes(ullDone).toUtf8().constData(),
                 FormatBytes(ullTotal).toUtf8().constData(),
                 static_cast<unsigned long long>(ullPercent), rate.toUtf8().constData());
    std::fflush(stderr);
}

QString CliFrontEnd::FormatBytes(uint64_t ullBytes) {
    constexpr std::array<const char*, 5> kUnits = {"bytes", "KiB", "MiB", "GiB", "TiB"};
    constexpr double kStep = 1024.0;
    auto value = static_cast<double>(ullBytes);
    size_t unit = 0;
    while (value >= kStep && unit + 1 < kUnits.size()) {
        value /= kStep;
        ++unit;
    }
    return unit == 0 ? QStringLiteral("%1 bytes").arg(ullBytes)
                     : QStringLiteral("%1 %2").arg(value, 0, 'f', 1).arg(kUnits[unit]);
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
