// Writes a copy of a 2048-byte-sector image in another sector layout, for the fuzzer's seeds.
//   ovrin-sector-image mode1|mode2form1|mode2|subchannel|nero-daox|nero-etnf IN OUT
#include <cstdio>
#include <cstring>

#include "SectorImages.h"
#include "TestFiles.h"

using namespace qmz::test;

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
    for (const Kind& k : kKinds) {
        if (argc == 4 && std::strcmp(argv[1], k.name) == 0) {
            auto iso = testsupport::ReadWholeFile(argv[2]);
            constexpr uint32_t kPregapSectors = 2;
            testsupport::WriteFile(argv[3], k.nero ? MakeNero(iso, k.kind, k.table, kPregapSectors)
                                                   : RecordSectors(iso, k.kind));
            return 0;
        }
    }
    std::fprintf(stderr, "usage: %s mode1|mode2form1|mode2|subchannel|nero-daox|nero-etnf IN OUT\n",
                 argv[0]);
    return 2;
}
