#include "FakeListing.h"

#include <fstream>
#include <sstream>

namespace {

std::u16string Widen(const std::string& utf8) {
    std::u16string out;
    for (size_t i = 0; i < utf8.size();) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        char32_t cp = c;
        size_t n = 1;
        if (c >= 0xF0) {
            cp = c & 0x07;
            n = 4;
        } else if (c >= 0xE0) {
            cp = c & 0x0F;
            n = 3;
        } else if (c >= 0xC0) {
            cp = c & 0x1F;
            n = 2;
        }
        for (size_t k = 1; k < n && i + k < utf8.size(); ++k) {
            cp = (cp << 6) | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
        }
        i += n;
        if (cp >= 0x10000) {
            out += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp);
        }
    }
    return out;
}

std::string RestOfLine(std::istringstream& in) {
    std::string rest;
    std::getline(in >> std::ws, rest);
    return rest;
}

void AddEntry(FakeListing& listing, const std::u16string& path, FakeEntry entry) {
    const size_t slash = path.rfind(u'\\');
    const std::u16string parent = slash == std::u16string::npos ? u"" : path.substr(0, slash);
    entry.name = slash == std::u16string::npos ? path : path.substr(slash + 1);
    if (entry.bFolder) {
        listing.folders[path];
    }
    listing.folders[parent].push_back(std::move(entry));
}

} // namespace

bool FakeListing::Load(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        return false;
    }
    folders[u""];
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream in(line);
        std::string word;
        in >> word;
        FakeEntry entry;
        if (word == "volume") {
            // Everything after the one blank that follows the word, blanks included.
            volumeId = Widen(line.size() > 7 ? line.substr(7) : std::string());
        } else if (word == "counts") {
            in >> counts[0] >> counts[1];
            bHasCounts = true;
        } else if (word == "d") {
            entry.bFolder = true;
            in >> entry.ticks;
            AddEntry(*this, Widen(RestOfLine(in)), entry);
        } else if (word == "f") {
            in >> entry.size >> entry.ticks;
            AddEntry(*this, Widen(RestOfLine(in)), entry);
        } else if (word == "fail") {
            std::string op;
            FakeFault fault;
            std::string code;
            in >> op >> fault.nth >> code;
            fault.code = static_cast<int32_t>(std::stoul(code, nullptr, 0));
            faults[op] = fault;
        } else if (word == "wait-running") {
            in >> nWaitRunning;
        } else if (word == "drive-on-failure") {
            bDriveOnFailure = true;
        }
    }
    if (!bHasCounts) {
        for (const auto& [folder, entries] : folders) {
            for (const FakeEntry& e : entries) {
                ++counts[e.bFolder ? 0 : 1];
            }
        }
    }
    return true;
}
