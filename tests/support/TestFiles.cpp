#include "TestFiles.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace testsupport {

namespace {

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
        if (text[i] == '\\' && i + 3 < text.size() &&
            isdigit(static_cast<unsigned char>(text[i + 1]))) {
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

std::string CommandOutput(const std::string& command, int* pStatus) {
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return output;
    }
    std::array<char, 65536> buffer{};
    size_t n = 0;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        output.append(buffer.data(), n);
    }
    const int status = pclose(pipe);
    if (pStatus != nullptr) {
        *pStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    return output;
}

bool RunCommand(const std::string& command) {
    int status = -1;
    const std::string output = CommandOutput(command + " 2>&1", &status);
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

Tree SevenZipTree(const fs::path& image) {
    std::istringstream in(CommandOutput("TZ=UTC0 7z l -slt " + Quote(image)));
    Tree tree;
    std::string line;
    while (std::getline(in, line) && line != "----------") {
    }
    std::string path;
    Node node;
    auto value = [&line](const char* key) {
        size_t n = std::strlen(key);
        return line.compare(0, n, key) == 0 ? std::optional(line.substr(n)) : std::nullopt;
    };
    while (std::getline(in, line)) {
        if (auto v = value("Path = ")) {
            path = *v;
            node = Node();
        } else if (auto folder = value("Folder = ")) {
            node.directory = *folder == "+";
        } else if (auto size = value("Size = ")) {
            node.size = size->empty() ? 0 : std::stoull(*size);
        } else if (auto time = value("Modified = ")) {
            tm parts{};
            strptime(time->c_str(), "%Y-%m-%d %H:%M:%S", &parts);
            node.mtime = timegm(&parts);
        } else if (line.empty() && !path.empty()) {
            tree[path] = node;
            path.clear();
        }
    }
    return tree;
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
        const std::string raw = UnescapeMtree(path.substr(2));
        const std::string mapped = MapName(raw);
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

// Through std::filesystem::path, whose char16_t and char8_t forms are UTF-16 and UTF-8.
std::string ToUtf8(const std::u16string& text) {
    const std::u8string utf8 = fs::path(text).u8string();
    return {utf8.begin(), utf8.end()};
}

std::u16string ToUtf16(const std::string& text) {
    return fs::path(std::u8string(text.begin(), text.end())).u16string();
}

} // namespace testsupport
