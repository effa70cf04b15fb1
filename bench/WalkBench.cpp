// Measures the host's walk on a volume of many entries served by the engine test double:
// resident bytes per tree node, walk time with and without a window's event pump, and what pumping
// after every single entry would add.
// Usage: ovrin-walk-bench [ENTRIES]   (default 1,000,000 in folders of 1,000)
#include "CImageReader.h"
#include "COvDataItem.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kFilesPerFolder = 1000;

double Seconds(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Resident memory, which counts the node pool's slabs as well as the heap.
size_t ResidentBytes() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stoull(line.substr(6)) * 1024;
        }
    }
    return 0;
}

QString WriteListing(const QTemporaryDir& dir, int nEntries) {
    const QString path = dir.filePath(QStringLiteral("volume.txt"));
    std::ofstream out(path.toStdString());
    out << "volume BENCH\n";
    const int nFolders = nEntries / (kFilesPerFolder + 1);
    for (int d = 0; d < nFolders; ++d) {
        out << "d 133485408000000000 folder-" << d << '\n';
        for (int f = 0; f < kFilesPerFolder; ++f) {
            out << "f " << (f * 37 % 5000) << " 133485408000000000 folder-" << d << "\\file-" << f
                << ".txt\n";
        }
    }
    return path;
}

void ProcessEvents(void*) {
    QCoreApplication::processEvents();
}

// The double parses its listing file in OpenDrive, which CanOpen alone runs; that time is the
// double's and is taken off the walk.
double ListingParseSeconds(CImageReader& reader, const QString& listing) {
    const auto start = Clock::now();
    reader.CanOpen(listing);
    return Seconds(start);
}

double TimeWalk(CImageReader& reader, const QString& listing, size_t* pNodeBytes, int* pNodes) {
    const double parse = ListingParseSeconds(reader, listing);
    const size_t before = ResidentBytes();
    auto* pRoot = new COvDataItem(QString(), COvDataItem::KindRoot, 0, 0);
    const auto start = Clock::now();
    if (reader.OpenImage(listing, pRoot) < 0) {
        std::fprintf(stderr, "opening failed\n");
        std::exit(1);
    }
    const double seconds = Seconds(start) - parse;
    reader.CloseImage();
    *pNodes = 0;
    for (const COvDataItem* pFolder : pRoot->m_vecChildren) {
        *pNodes += 1 + static_cast<int>(pFolder->m_vecChildren.size());
    }
    *pNodeBytes = ResidentBytes() - before;
    delete pRoot;
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int nEntries = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
    QTemporaryDir dir;
    const QString listing = WriteListing(dir, nEntries);
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));

    size_t nodeBytes = 0;
    int nNodes = 0;
    // Memory is taken from the first walk: later ones reuse what the heap kept of it.
    TimeWalk(reader, listing, &nodeBytes, &nNodes);
    size_t reusedBytes = 0;
    const double plain = TimeWalk(reader, listing, &reusedBytes, &nNodes);
    reader.SetPump(ProcessEvents, nullptr);
    const double pumped = TimeWalk(reader, listing, &reusedBytes, &nNodes);

    constexpr int kPumpCalls = 200'000;
    const auto start = Clock::now();
    for (int i = 0; i < kPumpCalls; ++i) {
        QCoreApplication::processEvents();
    }
    const double perPump = Seconds(start) / kPumpCalls;

    std::printf("nodes:                         %d\n", nNodes);
    std::printf("memory per node:                 %.0f bytes\n",
                static_cast<double>(nodeBytes) / nNodes);
    std::printf("  of which the node itself:      %zu bytes\n", sizeof(COvDataItem));
    std::printf("walk, no pump:                 %.3f s (%.2f us per entry)\n", plain,
                plain * 1e6 / nNodes);
    std::printf("walk, paced processEvents:     %.3f s\n", pumped);
    std::printf("one processEvents call:        %.2f us\n", perPump * 1e6);
    std::printf("pumping after every entry:     +%.3f s (%.0f%% of the walk)\n", perPump * nNodes,
                100.0 * perPump * nNodes / plain);
    return 0;
}
