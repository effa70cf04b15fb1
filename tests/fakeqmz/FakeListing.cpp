#include "FakeListing.h"

#include <fstream>
#include <sstream>

namespace {

// Listings are written by the tests in ASCII.
std::u16string Widen(const std::string& text) {
    return {text.begin(), text.end()};
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

const FakeEntry* FakeListing::FindFile(const std::u16string& path) const {
    const size_t slash = path.rfind(u'\\');
    const std::u16string parent = slash == std::u16string::npos ? u"" : path.substr(0, slash);
    const std::u16string name = slash == std::u16string::npos ? path : path.substr(slash + 1);
    const auto it = folders.find(parent);
    if (it == folders.end()) {
        return nullptr;
    }
    for (const FakeEntry& entry : it->second) {
        if (!entry.bFolder && entry.name == name) {
            return &entry;
        }
    }
    return nullptr;
}
