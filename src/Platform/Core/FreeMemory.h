// How much memory this process may still take, and how much of it one table may.
#pragma once

#include <cstdint>
#include <string>

namespace FreeMemory {

/// Where the system says it; tests point these elsewhere.
struct Sources {
    std::string memoryInformation = "/proc/meminfo";
    std::string processStatus = "/proc/self/statm"; ///< its first number: pages of address space in use
    std::string processGroups = "/proc/self/cgroup";
    std::string groupsFolder = "/sys/fs/cgroup"; ///< the unified hierarchy; absent limits do not limit
};

/// Bytes: the least of the machine's available memory, what the limits of the control groups above this
/// process leave (pages of files count as free), and what the limit of its address space leaves. Sources that
/// cannot be read are left out. Any thread.
std::uint64_t bytes(const Sources& sources = {});

/// Bytes that one table may take: 60 % of the free memory.
std::uint64_t tableLimit(const Sources& sources = {});

} // namespace FreeMemory
