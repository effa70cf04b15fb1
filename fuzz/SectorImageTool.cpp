// Writes a copy of a 2048-byte-sector image in another sector layout, or any image in the
// fuzzer's compact form (see SparseImage.h), for the fuzzer's seeds.
//   ovrin-sector-image mode1|mode2form1|mode2|subchannel|nero-daox|nero-etnf|compact IN OUT
#include <cstdio>
#include <cstring>

#include "SectorImages.h"
#include "SparseImage.h"
#include "TestFiles.h"

using namespace qmz::test;

namespace {

// An input already compact is copied as it is, so that converting a corpus twice changes nothing.
int Compact(const char* in, const char* out) {
    const auto raw = testsupport::ReadWholeFile(in);
    if (ovrin::fuzz::SparseImage::IsCompact(raw.data(), raw.size())) {
        testsupport::WriteFile(out, raw);
        return 0;
    }
    if (raw.size() > ovrin::fuzz::SparseImage::kMaxImageBytes) {
        std::fprintf(stderr, "%s: larger than the fuzzer's %u bytes\n", in,
                     ovrin::fuzz::SparseImage::kMaxImageBytes);
        return 1;
    }
    testsupport::WriteFile(out, ovrin::fuzz::SparseImage::Compact(raw));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    struct Kind {
        const char* name;
        SectorKind kind;
        bool nero;
        NeroTable table;
    };
    const Kind kKinds[] = {
        {"mode1", SectorKind::kMode1, false, {}},
        {"mode2form1", SectorKind::kMode2Form1, false, {}},
        {"mode2", SectorKind::kMode2, false, {}},
        {"subchannel", SectorKind::kMode1Subchannel, false, {}},
        {"nero-daox", SectorKind::kMode1, true, NeroTable::kDaoX},
        {"nero-etnf", SectorKind::kPlain, true, NeroTable::kEtnf},
    };
    if (argc == 4 && std::strcmp(argv[1], "compact") == 0) {
        return Compact(argv[2], argv[3]);
    }
    for (const Kind& k : kKinds) {
        if (argc == 4 && std::strcmp(argv[1], k.name) == 0) {
            auto iso = testsupport::ReadWholeFile(argv[2]);
            constexpr uint32_t kPregapSectors = 2;
            testsupport::WriteFile(argv[3], k.nero ? MakeNero(iso, k.kind, k.table, kPregapSectors)
                                                   : RecordSectors(iso, k.kind));
            return 0;
        }
    }
    std::fprintf(stderr,
                 "usage: %s mode1|mode2form1|mode2|subchannel|nero-daox|nero-etnf|compact IN OUT\n",
                 argv[0]);
    return 2;
}
