// Free memory from the files in which the kernel tells it.
#include "Platform/Core/FreeMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>

namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t difference(std::uint64_t total, std::uint64_t used) {
    return total - std::min(total, used);
}

/// The number that follows `key` at the beginning of a line.
std::optional<std::uint64_t> numberAfter(const std::string& path, const std::string& key) {
    std::ifstream file(path);
    for (std::string word; file >> word; file.ignore(unlimited >> 1U, '\n')) {
        std::uint64_t number = 0;
        if (word == key && file >> number)
            return number;
    }
    return std::nullopt;
}

/// The first word of a file, if it is a number ("max" is none).
std::optional<std::uint64_t> firstNumber(const std::string& path) {
    std::ifstream file(path);
    std::uint64_t number = 0;
    return file >> number ? std::optional(number) : std::nullopt;
}

std::uint64_t availableOnMachine(const FreeMemory::Sources& sources) {
    const auto kibibytes = numberAfter(sources.memoryInformation, "MemAvailable:");
    return kibibytes ? *kibibytes * 1024 : unlimited;
}

/// What one group's limit leaves. Pages of files are given back under pressure, so they count as free.
std::uint64_t leftInGroup(const std::string& folder) {
    const auto limit = firstNumber(folder + "/memory.max");
    const auto used = firstNumber(folder + "/memory.current");
    if (!limit || !used)
        return unlimited;
    const std::uint64_t reclaimable = numberAfter(folder + "/memory.stat", "active_file").value_or(0) +
                                      numberAfter(folder + "/memory.stat", "inactive_file").value_or(0);
    return difference(*limit, difference(*used, reclaimable));
}

/// The least that the process's group or one above it leaves.
std::uint64_t leftInGroups(const FreeMemory::Sources& sources) {
    constexpr const char* unified = "0::/";
    std::ifstream file(sources.processGroups);
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(unified))
            continue;
        std::uint64_t left = leftInGroup(sources.groupsFolder);
        std::string folder = sources.groupsFolder;
        for (const auto& part : std::filesystem::path(line.substr(4))) {
            folder.append("/").append(part.string());
            left = std::min(left, leftInGroup(folder));
        }
        return left;
    }
    return unlimited;
}

std::uint64_t leftOfAddressSpace(const FreeMemory::Sources& sources) {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return unlimited;
    const auto pages = firstNumber(sources.processStatus).value_or(0);
    return difference(limit.rlim_cur, pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
}

} // namespace

std::uint64_t FreeMemory::bytes(const Sources& sources) {
    return std::min({availableOnMachine(sources), leftInGroups(sources), leftOfAddressSpace(sources)});
}

std::uint64_t FreeMemory::tableLimit(const Sources& sources) {
    return bytes(sources) / 5 * 3;
}
