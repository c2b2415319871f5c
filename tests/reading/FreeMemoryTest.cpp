// Free memory as the system's files tell it.
#include "Platform/Core/FreeMemory.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;

TEST(FreeMemory, IsTheLeastThatMachineAndGroupsLeave) {
    const struct {
        const char* name;
        const char* outerLimit;
        const char* innerLimit;
        const char* innerUsed;
        const char* innerStatistics;
        std::uint64_t expectedMebibytes;
    } rows[] = {
        {"no limits", "max\n", "max\n", "1048576\n", "anon 1\n", 1000},
        {"the group's limit", "max\n", "104857600\n", "52428800\n", "anon 1\n", 50},
        {"pages of files count as free", "max\n", "104857600\n", "52428800\n",
         "anon 1\ninactive_file 20971520\nactive_file 10485760\n", 80},
        {"the limit of a group above", "10485760\n", "104857600\n", "0\n", "anon 1\n", 10},
        {"more used than allowed", "max\n", "1048576\n", "2097152\n", "anon 1\n", 0},
    };
    for (const auto& row : rows) {
        const support::ScratchFolder folder;
        QDir(folder.path()).mkpath(QStringLiteral("outer/inner"));
        folder.write(QStringLiteral("outer/memory.max"), row.outerLimit);
        folder.write(QStringLiteral("outer/memory.current"), "0\n");
        folder.write(QStringLiteral("outer/inner/memory.max"), row.innerLimit);
        folder.write(QStringLiteral("outer/inner/memory.current"), row.innerUsed);
        folder.write(QStringLiteral("outer/inner/memory.stat"), row.innerStatistics);
        FreeMemory::Sources sources;
        sources.memoryInformation =
            folder.write(QStringLiteral("meminfo"), "MemTotal: 9 kB\nMemAvailable:    1024000 kB\n")
                .toStdString();
        sources.processGroups =
            folder.write(QStringLiteral("cgroup"), "4:memory:/elsewhere\n0::/outer/inner\n").toStdString();
        sources.groupsFolder = folder.path().toStdString();
        EXPECT_EQ(FreeMemory::bytes(sources) / mebibyte, row.expectedMebibytes) << row.name;
        EXPECT_EQ(FreeMemory::tableLimit(sources), FreeMemory::bytes(sources) / 5 * 3) << row.name;
    }
    EXPECT_GT(FreeMemory::bytes(), 0U) << "of this machine";
}

} // namespace
