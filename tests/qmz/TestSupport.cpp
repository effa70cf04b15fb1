#include "TestSupport.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace qmz::test {

namespace {

// The engine's times are local; the tests compare them in UTC.
[[maybe_unused]] const int kUtc = (setenv("TZ", "UTC0", 1), tzset(), 0);

std::string MapName(const std::string& name) {
    std::string out;
    for (char c : name) {
        out += c == '\\' ? "\xEF\xBC\xBC" : std::string(1, c);
    }
    return out;
}

// mtree writes bytes outside printable ASCII and a few others as \ooo.
std::string UnescapeMtree(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() + 0 && isdigit(text[i + 1])) {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "qmz-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(path_, ignored);
}

bool RunCommand(const std::string& command) {
    std::string full = command + " 2>&1";
    FILE* pipe = popen(full.c_str(), "r");
    if (pipe == nullptr) {
        return false;
    }
    std::string output;
    std::array<char, 4096> buffer{};
    size_t n = 0;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        output.append(buffer.data(), n);
    }
    int status = pclose(pipe);
    if (status != 0) {
        ADD_FAILURE() << "command failed: " << command << "\n" << output;
    }
    return status == 0;
}

std::string Quote(const fs::path& path) {
    std::string out = "'";
    for (char c : path.string()) {
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + "'";
}

void WriteFile(const fs::path& path, const std::vector<uint8_t>& bytes, int64_t mtime) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    if (mtime != 0) {
        struct timespec times[2] = {{mtime, 0}, {mtime, 0}};
        utimensat(AT_FDCWD, path.c_str(), times, 0);
    }
}

std::vector<uint8_t> ReadWholeFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<uint8_t> PatternBytes(size_t size, uint32_t seed) {
    std::vector<uint8_t> bytes(size);
    uint32_t x = seed * 2654435761u + 1;
    for (auto& b : bytes) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        b = static_cast<uint8_t>(x);
    }
    return bytes;
}

Tree BsdtarTree(const fs::path& image, std::map<std::string, std::string>* rawPaths) {
    TempDir dir;
    Tree tree;
    if (!RunCommand("bsdtar -cf - --format=mtree --options='!all,type,size,time' @" + Quote(image) +
                    " > " + Quote(dir / "mtree"))) {
        return tree;
    }
    std::ifstream in(dir / "mtree");
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("./", 0) != 0) {
            continue;
        }
        std::istringstream words(line);
        std::string path;
        words >> path;
        std::string raw = UnescapeMtree(path.substr(2));
        std::string mapped;
        for (size_t start = 0;;) {
            size_t cut = raw.find('/', start);
            mapped += MapName(raw.substr(start, cut - start));
            if (cut == std::string::npos) {
                break;
            }
            mapped += '/';
            start = cut + 1;
        }
        Node node;
        std::string word;
        while (words >> word) {
            if (word == "type=dir") {
                node.directory = true;
            } else if (word.rfind("size=", 0) == 0) {
                node.size = std::stoull(word.substr(5));
            } else if (word.rfind("time=", 0) == 0) {
                node.mtime = std::stoll(word.substr(5));
            }
        }
        tree[mapped] = node;
        if (rawPaths != nullptr) {
            (*rawPaths)[mapped] = raw;
        }
    }
    return tree;
}

Tree DiskTree(const fs::path& root) {
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        struct stat st {};
        lstat(entry.path().c_str(), &st);
        Node node;
        node.directory = S_ISDIR(st.st_mode);
        node.size = S_ISREG(st.st_mode) ? static_cast<uint64_t>(st.st_size) : 0;
        node.mtime = st.st_mtime;
        tree[MapName(fs::relative(entry.path(), root).string())] = node;
    }
    return tree;
}

std::string ToUtf8(const std::u16string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t cp = text[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text.size()) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (text[++i] - 0xDC00);
        }
        if (cp < 0x80) {
            out += static_cast<char>(cp);
        } else if (cp < 0x800) {
            out += static_cast<char>(0xC0 | (cp >> 6));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            out += static_cast<char>(0xE0 | (cp >> 12));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (cp >> 18));
            out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        }
    }
    return out;
}

std::u16string ToUtf16(const std::string& text) {
    std::u16string out;
    for (size_t i = 0; i < text.size();) {
        auto c = static_cast<uint8_t>(text[i]);
        int extra = c < 0x80 ? 0 : c < 0xE0 ? 1 : c < 0xF0 ? 2 : 3;
        uint32_t cp = extra == 0 ? c : c & (0x3F >> extra);
        for (int k = 1; k <= extra; ++k) {
            cp = (cp << 6) | (static_cast<uint8_t>(text[i + k]) & 0x3F);
        }
        i += 1 + extra;
        if (cp >= 0x10000) {
            out += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp);
        }
    }
    return out;
}

int64_t FileTimeToUnix(const FileTime& ft) {
    uint64_t ticks = (uint64_t{ft.dwHighDateTime} << 32) | ft.dwLowDateTime;
    return static_cast<int64_t>(ticks / 10000000) - 11644473600;
}

Session::Session() {
    IClassFactory* factory = nullptr;
    EXPECT_EQ(
        DllGetClassObject(&kClsidQmzEngine, &kIidClassFactory, reinterpret_cast<void**>(&factory)),
        kOk);
    EXPECT_EQ(factory->CreateInstance(nullptr, kIidQmzEngine, reinterpret_cast<void**>(&engine_)),
              kOk);
    factory->Release();
}

Session::~Session() {
    if (fs != nullptr) {
        fs->Release();
    }
    if (reader != nullptr) {
        reader->Unload();
        reader->Detach();
        reader->Release();
    }
    if (drive_ != nullptr) {
        drive_->Release();
    }
    engine_->Release();
}

Result Session::Open(const fs::path& image) {
    std::u16string path = ToUtf16(image.string());
    Result r = engine_->OpenDrive(0, kAccessRead, path.c_str(), &drive_);
    if (r != kOk) {
        return r;
    }
    EXPECT_EQ(engine_->CreateReader(kIidQmzReader, &reader), kOk);
    EXPECT_EQ(reader->Attach(drive_), kOk);
    r = reader->Load();
    if (r == kOk) {
        EXPECT_EQ(reader->QueryInterface(kIidQmzFileSystem, reinterpret_cast<void**>(&fs)), kOk);
    }
    return r;
}

Result Session::Scan() {
    Result r = reader->Start(kScanOperation, 0, 0);
    if (r != kOk) {
        return r;
    }
    uint32_t state = 0;
    float progress = 0;
    while ((r = reader->Wait(100, &state, &progress)) == kWaitStillRunning) {
        EXPECT_GE(progress, 0.0f);
        EXPECT_LE(progress, 1.0f);
    }
    EXPECT_EQ(r, kOk);
    return reader->Finish();
}

void Session::WalkFolder(const std::u16string& folder, const std::string& prefix, Tree* tree,
                         int* failures) {
    // One listing at a time: gather the folder's entries, then go down.
    std::vector<std::pair<std::u16string, bool>> children;
    file_attr attr{};
    Result r = fs->FindFirst(folder.c_str(), &attr);
    if (r == kFindFolderEmpty) {
        return;
    }
    if (r != kOk) {
        ++*failures;
        return;
    }
    do {
        std::u16string name(attr.strName);
        bool directory = (attr.uAttributes & kAttrDirectory) != 0;
        Node node{directory, attr.ullSize, FileTimeToUnix(attr.ftLocalTime)};
        (*tree)[prefix + ToUtf8(name)] = node;
        children.emplace_back(name, directory);
    } while ((r = fs->FindNext(&attr)) == kOk);
    if (r != kFindNoMoreEntries) {
        ++*failures;
    }
    fs->FindClose();
    for (const auto& [name, directory] : children) {
        if (directory) {
            WalkFolder(folder.empty() ? name : folder + u"\\" + name, prefix + ToUtf8(name) + "/",
                       tree, failures);
        }
    }
}

Tree Session::Walk(int* failures) {
    Tree tree;
    int ignored = 0;
    WalkFolder(u"", "", &tree, failures != nullptr ? failures : &ignored);
    return tree;
}

Result Session::ReadAll(const std::string& path, std::vector<uint8_t>* out, uint32_t chunk) {
    std::u16string enginePath = ToUtf16(path);
    for (auto& c : enginePath) {
        c = c == u'/' ? u'\\' : c;
    }
    uint64_t size = 0;
    Result r = fs->OpenFile(enginePath.c_str(), &size);
    if (r != kOk) {
        return r;
    }
    out->clear();
    std::vector<uint8_t> buffer(chunk);
    uint32_t got = 0;
    while ((r = fs->ReadFile(buffer.data(), chunk, &got, 0)) == kOk && got > 0) {
        out->insert(out->end(), buffer.begin(), buffer.begin() + got);
        if (out->size() < size) {
            EXPECT_EQ(got, chunk) << "short read before the end of " << path;
        }
    }
    fs->CloseFile();
    if (r == kOk) {
        EXPECT_EQ(out->size(), size) << path;
    }
    return r;
}

} // namespace qmz::test
