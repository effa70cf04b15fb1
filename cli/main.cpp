// ovrin-cli: the program's logic from the command line, for people, scripts, tests and
// benchmarks.
#include "CliCommands.h"

#include <QFile>

#include <cstdio>
#include <cstring>
#include <malloc.h>

namespace {

// Extraction allocates and frees a 32 KiB buffer for every chunk, at the disk's pace. With the
// allocator's default, the freed top of the heap goes back to the system again and again and is
// faulted in anew; the list of chunks is bounded, so keeping it costs no more than its peak.
constexpr int kHeapTrimThreshold = 256 << 20;

const cli::Command kCommands[] = {
    {"list", "list [--long] IMAGE   list every folder and file of a disc image, --long with types",
     cli::RunList},
    {"info", "info IMAGE   show the volume name, file system and totals", cli::RunInfo},
    {"extract",
     "extract IMAGE [PATH...] [-C DIR] [--overwrite|--skip-existing]   copy the whole image, "
     "or the named files and folders, into DIR (default: the current folder)",
     cli::RunExtract},
    {"cat", "cat IMAGE PATH   write one file of the image to standard output", cli::RunCat},
    {"layout", "layout FOLDER [--dvd-first]   show how a folder would lie on a disc",
     cli::RunLayout},
    {"reg", "reg get|set|delete|list HKCU|HKLM KEY [NAME [sz|dword|binary VALUE]]", cli::RunReg},
};

void PrintUsage(std::FILE* pOut) {
    const char* prefix = "Usage:";
    for (const cli::Command& command : kCommands) {
        std::fprintf(pOut, "%-6s ovrin-cli %s\n", prefix, command.usage);
        prefix = "";
    }
}

} // namespace

void cli::PrintError(const QString& text) {
    std::fprintf(stderr, "ovrin-cli: %s\n", text.toUtf8().constData());
}

int main(int argc, char** argv) {
    mallopt(M_TRIM_THRESHOLD, kHeapTrimThreshold);
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        PrintUsage(stdout);
        return cli::kExitOk;
    }
    for (const cli::Command& command : kCommands) {
        if (argc >= 2 && std::strcmp(argv[1], command.name) == 0) {
            QStringList args;
            for (int i = 2; i < argc; ++i) {
                args << QFile::decodeName(argv[i]);
            }
            const int exitCode = command.run(args);
            if (exitCode != cli::kExitUsage) {
                return exitCode;
            }
            break;
        }
    }
    PrintUsage(stderr);
    return cli::kExitUsage;
}
