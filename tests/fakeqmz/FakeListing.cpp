#include "FakeListing.h"

#include <algorithm>
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

// A path's folder and name.
std::pair<std::u16string, std::u16string> Split(const std::u16string& path) {
    const size_t slash = path.rfind(u'\\');
    return slash == std::u16string::npos ? std::pair{std::u16string(), path}
                                         : std::pair{path.substr(0, slash), path.substr(slash + 1)};
}

void AddEntry(FakeListing& listing, const std::u16string& path, FakeEntry entry) {
    auto [parent, name] = Split(path);
    entry.name = std::move(name);
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
    const auto split = Split(path);
    const auto folder = folders.find(split.first);
    if (folder == folders.end()) {
        return nullptr;
    }
    const auto it = std::ranges::find_if(
        folder->second, [&](const FakeEntry& e) { return !e.bFolder && e.name == split.second; });
    return it == folder->second.end() ? nullptr : &*it;
}
