// What this process has open, as the system counts it.
#pragma once

#include <QDir>

#include <cstddef>

namespace support {

struct ProcessCounts {
    std::size_t threads;
    std::size_t files; ///< open descriptors

    bool operator==(const ProcessCounts&) const = default;
};

inline ProcessCounts processCounts() {
    const auto entries = [](const char* folder) {
        return static_cast<std::size_t>(QDir(QLatin1String(folder))
                                            .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                                            .size());
    };
    return {entries("/proc/self/task"), entries("/proc/self/fd")};
}

} // namespace support
