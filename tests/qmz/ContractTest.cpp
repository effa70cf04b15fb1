// The engine's states and reference counting as the program sees them through the exported
// entry points, and the shape of Qmz.so itself.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "TestSupport.h"

namespace qmz::test {
namespace {

// A small image with folders, files and an empty folder.
class ContractTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = new TempDir();
        fs::path src = *dir_ / "src";
        for (int i = 0; i < 5; ++i) {
            WriteFile(src / "list" / ("f" + std::to_string(i)), PatternBytes(5000 + i, i));
        }
        fs::create_directories(src / "empty");
        ASSERT_TRUE(RunCommand("genisoimage -quiet -R -J -o " + Quote(Image()) + " " + Quote(src)));
    }
    static void TearDownTestSuite() { delete dir_; }
    static fs::path Image() { return *dir_ / "small.iso"; }
    // 1020 folders: a scan long enough to be caught running. Made on first use.
    static fs::path ManyFolders() {
        fs::path image = *dir_ / "many.iso";
        if (!fs::exists(image)) {
            fs::path many = *dir_ / "many";
            for (int i = 0; i < 1000; ++i) {
                fs::create_directories(many / ("d" + std::to_string(i / 50)) / std::to_string(i));
            }
            EXPECT_TRUE(RunCommand("genisoimage -quiet -R -o " + Quote(image) + " " + Quote(many)));
        }
        return image;
    }

    static inline TempDir* dir_ = nullptr;
};

TEST_F(ContractTest, OpenDriveDecidesByContent) {
    WriteFile(*dir_ / "zeros.iso", std::vector<uint8_t>(40 * 2048));
    fs::copy_file(Image(), *dir_ / "image.bin", fs::copy_options::overwrite_existing);
    const std::pair<fs::path, Result> cases[] = {{*dir_ / "missing.iso", kEngineOpenFailed},
                                                 {*dir_ / "zeros.iso", kEngineBadImage},
                                                 {dir_->Path(), kEngineOpenFailed},
                                                 {*dir_ / "image.bin", kOk}};
    for (const auto& [path, result] : cases) {
        EXPECT_EQ(Session().Open(path), result) << path;
    }
}

TEST_F(ContractTest, FileSystemWaitsForTheScanThenLists) {
    Session session;
    ASSERT_EQ(session.Open(Image()), kOk);
    file_attr attr{};
    fsInfo info{};
    uint64_t size = 0;
    EXPECT_EQ(session.fs->FindFirst(u"", &attr), kUnexpected);
    EXPECT_EQ(session.fs->GetFsInfo(&info), kUnexpected);
    EXPECT_EQ(session.fs->OpenFile(u"list\\f0", &size), kUnexpected);
    EXPECT_EQ(session.reader->Start(5, 0, 0), kEngineBadParameter);
    ASSERT_EQ(session.Scan(), kOk);
    EXPECT_EQ(session.reader->Start(kScanOperation, 0, 0), kUnexpected);
    const std::pair<const char16_t*, Result> folders[] = {{u"empty", kFindFolderEmpty},
                                                          {u"nothing", kEngineFileNotFound},
                                                          {u"list\\f0", kEngineFileNotFound},
                                                          {u"list\\", kEngineFileNotFound}};
    for (const auto& [folder, result] : folders) {
        EXPECT_EQ(session.fs->FindFirst(folder, &attr), result);
    }
    ASSERT_EQ(session.fs->FindFirst(u"", &attr), kOk);
    EXPECT_EQ(std::u16string(attr.strName), u"empty");
    EXPECT_EQ(attr.uAttributes, kAttrDirectory);
    ASSERT_EQ(session.fs->FindNext(&attr), kOk);
    EXPECT_EQ(session.fs->FindNext(&attr), kFindNoMoreEntries);
    EXPECT_EQ(session.fs->FindClose(), kOk);
    EXPECT_EQ(session.fs->FindNext(&attr), kUnexpected);
}

TEST_F(ContractTest, ReadingAFileDoesNotDisturbTheListing) {
    Session session;
    ASSERT_EQ(session.Open(Image()), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    file_attr attr{};
    std::vector<std::u16string> names;
    Result r = session.fs->FindFirst(u"list", &attr);
    for (int i = 0; r == kOk; ++i, r = session.fs->FindNext(&attr)) {
        names.emplace_back(attr.strName);
        std::vector<uint8_t> bytes;
        ASSERT_EQ(session.ReadAll("list/" + ToUtf8(attr.strName), &bytes, 1000), kOk);
        EXPECT_EQ(bytes, PatternBytes(5000 + i, i));
        uint32_t got = 7;
        EXPECT_EQ(session.fs->ReadFile(bytes.data(), 10, &got, 0), kUnexpected); // closed
    }
    EXPECT_EQ(r, kFindNoMoreEntries);
    EXPECT_EQ(names, (std::vector<std::u16string>{u"f0", u"f1", u"f2", u"f3", u"f4"}));
    uint64_t size = 0;
    EXPECT_EQ(session.fs->OpenFile(u"list", &size), kEngineFileNotFound);
    EXPECT_EQ(session.fs->OpenFile(u"list\\f9", &size), kEngineFileNotFound);
}

TEST_F(ContractTest, CancelStopsTheScan) {
    Session session;
    ASSERT_EQ(session.Open(ManyFolders()), kOk);
    ASSERT_EQ(session.reader->Start(kScanOperation, 0, 0), kOk);
    EXPECT_EQ(session.reader->Cancel(), kOk);
    EXPECT_EQ(session.reader->Finish(), kStopped);
    file_attr attr{};
    EXPECT_EQ(session.fs->FindFirst(u"", &attr), kUnexpected);
}

TEST_F(ContractTest, ReleasingARunningReaderJoinsAndEverythingUnloads) {
    {
        Session session;
        ASSERT_EQ(session.Open(ManyFolders()), kOk);
        ASSERT_EQ(session.reader->Start(kScanOperation, 0, 0), kOk);
        session.fs->Release();
        session.fs = nullptr;
        IQmzReader* reader = session.reader;
        session.reader = nullptr;
        EXPECT_EQ(reader->Release(), 0u); // cancels and joins; ASan sees any use after free
        EXPECT_EQ(DllCanUnloadNow(), kFalse);
    }
    EXPECT_EQ(DllCanUnloadNow(), kOk);
}

TEST_F(ContractTest, ClassObjectAndInterfaces) {
    void* p = nullptr;
    EXPECT_NE(DllGetClassObject(&kIidQmzReader, &kIidClassFactory, &p), kOk);
    EXPECT_EQ(p, nullptr);
    IClassFactory* factory = nullptr;
    ASSERT_EQ(
        DllGetClassObject(&kClsidQmzEngine, &kIidClassFactory, reinterpret_cast<void**>(&factory)),
        kOk);
    IQmzEngine* engine = nullptr;
    ASSERT_EQ(factory->CreateInstance(nullptr, kIidQmzEngine, reinterpret_cast<void**>(&engine)),
              kOk);
    EXPECT_EQ(factory->LockServer(1), kOk);
    factory->Release();
    IBwRegPath* regPath = nullptr;
    ASSERT_EQ(engine->QueryInterface(kIidBwRegPath, reinterpret_cast<void**>(&regPath)), kOk);
    const uint32_t root = kHkeyLocalMachine;
    EXPECT_EQ(regPath->SetRegPath(&root, u"Software\\Ovrin", 15, 0), kOk);
    regPath->Release();
    EXPECT_EQ(engine->QueryInterface(kIidQmzReader, &p), kNoInterface);
    engine->Release();
    EXPECT_EQ(DllCanUnloadNow(), kFalse); // the server lock
    DllGetClassObject(&kClsidQmzEngine, &kIidClassFactory, reinterpret_cast<void**>(&factory));
    factory->LockServer(0);
    factory->Release();
    EXPECT_EQ(DllCanUnloadNow(), kOk);
}

TEST(ModuleTest, ExportsOnlyTheTwoEntryPoints) {
    // RTLD_NOW: a symbol that the module needs and nothing provides fails here.
    void* module = dlopen(QMZ_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    dlclose(module);

    TempDir dir;
    ASSERT_TRUE(RunCommand(std::string("nm -D --defined-only ") + QMZ_MODULE_PATH +
                           " | awk '{print $3}' | sort > " + Quote(dir / "symbols")));
    auto symbols = ReadWholeFile(dir / "symbols");
    EXPECT_EQ(std::string(symbols.begin(), symbols.end()), "DllCanUnloadNow\nDllGetClassObject\n");
}

} // namespace
} // namespace qmz::test
